// Compares each document of a manifest with the published schema of its kind: types and required
// fields by the schema, unknown fields by the interface that is made from it. By hand, in a folder
// of its own:
//   npm install kubernetes-models typescript yaml
//   node kubernetes.mjs MANIFEST
import { execFileSync } from "node:child_process";
import { readFileSync, writeFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";

const require = createRequire(join(process.cwd(), "package.json"));
const { parseAllDocuments } = require("yaml");

const interfaces = [];
for (const document of parseAllDocuments(readFileSync(process.argv[2], "utf8"))) {
  if (document.errors.length > 0) throw document.errors[0];
  const resource = document.toJS();
  const model = `kubernetes-models/${resource.apiVersion}/${resource.kind}`;
  new (require(model)[resource.kind])(resource).validate();
  const name = `I${resource.kind}`;
  const type = `import("${model}").${name}`;
  interfaces.push(`const r${interfaces.length}: ${type} = ${JSON.stringify(resource, null, 1)};\n`);
  console.log(`${resource.kind} ${resource.metadata.name}: right by its schema`);
}
writeFileSync("manifest.ts", interfaces.join(""));
execFileSync("npx", ["tsc", "--noEmit", "--strict", "--skipLibCheck", "--types", "", "manifest.ts"], {
  stdio: "inherit",
});
console.log("no unknown fields");
