// Runs one SQL text in DuckDB on one thread: node duckdb.mjs SQL
import { createRequire } from 'node:module';
import process from 'node:process';

const require = createRequire(process.cwd() + '/');
const { DuckDBInstance } = require('@duckdb/node-api');
const instance = await DuckDBInstance.create(':memory:', { threads: '1' });
const connection = await instance.connect();
await connection.run(process.argv[2]);
