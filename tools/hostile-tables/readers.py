"""Programs that read documents. Each reader takes the paths of many documents and gives, for each of
them, the rows that it found, a list of texts (None is NULL), or the exception that it ended with."""
import atexit
import functools
import html
import html.parser
import json
import os
import re
import subprocess
import xml.etree.ElementTree as ElementTree

from documents import trimmed

SHEET = "{urn:schemas-microsoft-com:office:spreadsheet}"
TABLE = "{urn:oasis:names:tc:opendocument:xmlns:table:1.0}"
TEXT = "{urn:oasis:names:tc:opendocument:xmlns:text:1.0}"
OFFICE = "{urn:oasis:names:tc:opendocument:xmlns:office:1.0}"
STYLE = "{urn:oasis:names:tc:opendocument:xmlns:style:1.0}"
FONT_STYLE = "{urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0}font-style"


class Fault(Exception):
    """What a reader said, or did not."""


def run(*command):
    done = subprocess.run([str(each) for each in command], capture_output=True, timeout=3600, check=False)
    if done.returncode != 0:
        raise Fault(f"{command[0]}: {done.returncode} {done.stdout[-300:]!r} {done.stderr[-300:]!r}")
    return done.stdout


def one_by_one(read):
    """A reader of many, from one that reads a single document."""
    @functools.wraps(read)
    def read_all(paths):
        found = []
        for path in paths:
            try:
                found.append(read(path))
            except Exception as error:  # whatever a reader says is told
                found.append(error)
        return found
    return read_all


def refuse(constant):
    raise Fault(f"{constant} is no JSON")


def parse_json(data):
    return json.loads(data, object_pairs_hook=list, parse_constant=refuse, parse_int=str, parse_float=str)


def json_rows(records):
    texts = {True: "1", False: "0", None: None}
    return [row for record in records for row in (
        [name for name, _ in record],
        [value if isinstance(value, str) else texts[value] for _, value in record])]


@one_by_one
def read_json(path):
    return json_rows(parse_json(path.read_bytes().decode("utf-8")))


@one_by_one
def read_json_lines(path):
    return json_rows(map(parse_json, path.read_bytes().decode("utf-8").split("\n")[:-1]))


@one_by_one
def read_json_by_jq(path):
    said = run("jq", "-c", ".[]" if path.suffix == ".json" else ".", path)
    return json_rows(map(parse_json, said.decode("utf-8").split("\n")[:-1]))


def unescape(tag):
    if tag == "_":
        return ""
    return re.sub("_x([0-9A-F]{6}|[0-9A-F]{4})_", lambda m: chr(int(m[1], 16)), tag)


def xml_rows(data, tags):
    return [row for record in ElementTree.fromstring(data) for row in (
        [unescape(field.tag) if tags else field.get("name") for field in record],
        [None if field.get("nil") == "true" else field.text or "" for field in record])]


@one_by_one
def read_xml(path):
    return xml_rows(path.read_bytes(), "tags" in path.name)


@one_by_one
def read_xml_by_xmllint(path):
    return xml_rows(run("xmllint", "--huge", "--c14n", path), "tags" in path.name)


@one_by_one
def read_xml_by_old_names(path):
    """By the rules for names of the fourth edition of XML 1.0."""
    return xml_rows(run("xmllint", "--huge", "--oldxml10", "--c14n", path), "tags" in path.name)


@one_by_one
def read_sheet(path):
    def cell_text(cell):
        data = cell.find(SHEET + "Data")
        if data is None:
            return None
        return iso_date(data.text) if data.get(SHEET + "Type") == "DateTime" else data.text or ""
    return [[cell_text(cell) for cell in row] for row in ElementTree.parse(path).iter(SHEET + "Row")]


def iso_date(text):
    text = text.replace("T", " ").removesuffix(".000").removesuffix(" 00:00:00")
    return re.sub(r"(\.\d+?)0+$", r"\1", text)


class Cells(html.parser.HTMLParser):
    """The rows of a page. A cell is NULL by its class."""

    def __init__(self, page):
        super().__init__()
        self.rows, self.inside = [], False
        self.feed(page)
        self.close()

    def handle_starttag(self, tag, attrs):
        if tag == "tr":
            self.rows.append([])
        elif tag in ("td", "th"):
            self.rows[-1].append(None if ("class", "null") in attrs else "")
            self.inside = True

    def handle_endtag(self, tag):
        self.inside = self.inside and tag not in ("td", "th")

    def handle_data(self, data):
        if self.inside:
            self.rows[-1][-1] = (self.rows[-1][-1] or "") + data


@one_by_one
def read_page(path):
    return Cells(path.read_bytes().decode("utf-8")).rows


@functools.cache
def browser():
    from selenium import webdriver  # only for who has pages read
    from selenium.webdriver.chrome.service import Service
    options = webdriver.ChromeOptions()
    for each in ("headless", "no-sandbox", "disable-gpu", "no-first-run", "disable-background-networking"):
        options.add_argument("--" + each)
    driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
    atexit.register(driver.quit)
    return driver


@one_by_one
def read_page_by_chromium(path):
    browser().get(path.as_uri())
    return browser().execute_script(
        "return Array.from(document.querySelectorAll('tr'), row => Array.from(row.cells,"
        " cell => cell.className == 'null' && cell.textContent == '' ? null : cell.textContent))")


def validate_pages(paths):
    """Nothing of a page that the validator has no complaint about, but for control characters and the
    like: a page has no other way to hold them, and programs that read pages know what they are."""
    known = ("Forbidden code point", "A numeric character reference expanded to carriage return")
    done = subprocess.run(["java", "-jar", os.environ["VNU_JAR"], "--errors-only", "--exit-zero-always",
                           "--format", "json", *map(str, paths)], capture_output=True, timeout=3600,
                          check=True)
    complaints = {}
    for each in json.loads(done.stderr)["messages"]:
        if not each["message"].startswith(known):
            complaints.setdefault(each.get("url", "").partition("file:")[2], []).append(each["message"])
    return [Fault("; ".join(sorted(set(complaints[str(path)])))) if str(path) in complaints else None
            for path in paths]


def read_by_office(kind, cells):
    """Has LibreOffice make `kind` of all documents in one process."""
    def read_all(paths):
        made = paths[0].parent / kind
        run("soffice", "--headless", f"-env:UserInstallation={(paths[0].parent / 'office').as_uri()}",
            "--convert-to", kind, "--outdir", made, *paths)
        return one_by_one(cells)([made / f"{path.stem}.{kind}" for path in paths])
    return read_all


def inner_text(element):
    known = {TEXT + "tab": "\t", TEXT + "line-break": "\n",
             TEXT + "s": " " * int(element.get(TEXT + "c", 1))}
    inside = "".join(inner_text(child) + (child.tail or "") for child in element)
    return known.get(element.tag, element.text or "") + inside


def lines(cell):
    return "\n".join(map(inner_text, cell.findall(TEXT + "p")))


def calc_cell(cell):
    value = cell.get(OFFICE + "value") or cell.get(OFFICE + "date-value")
    return iso_date(re.sub(r"(\.\d{6})\d+$", r"\1", value)) if value else lines(cell)


def calc_rows(path):
    """An empty cell is an empty text, and where a table ends nobody knows."""
    found = []
    for table in ElementTree.parse(path).iter(TABLE + "table"):
        rows = []
        for row in table.iter(TABLE + "table-row"):
            cells = [calc_cell(cell) for cell in row
                     for _ in range(min(int(cell.get(TABLE + "number-columns-repeated", 1)), 1000))]
            rows += [cells] * min(int(row.get(TABLE + "number-rows-repeated", 1)), 1000)
        found += trimmed(rows, lambda cell: cell == "")
    return found


def writer_rows(path):
    root = ElementTree.parse(path)
    italic = {style.get(STYLE + "name") for style in root.iter(STYLE + "style")
              if any(each.get(FONT_STYLE) == "italic" for each in style)}
    return [[None if any(span.get(TEXT + "style-name") in italic for span in cell.iter(TEXT + "span"))
             else lines(cell) for cell in row.findall(TABLE + "table-cell")]
            for row in root.iter(TABLE + "table-row")]


@one_by_one
def read_document_by_unrtf(path):
    """The texts between the ends of cells: it begins a cell, and a row, behind characters that are not
    plain. Its references are units of UTF-16."""
    page = run("unrtf", "--html", path).decode("latin-1").partition("<body>")[2]
    page = re.sub("&#([0-9]+);", lambda m: chr(int(m[1])), page)
    page = page.encode("utf-16-le", "surrogatepass").decode("utf-16-le")
    return [[None if "<i>" in cell else html.unescape(re.sub("<[^>]*>", "", cell))
             for cell in page.split("</td>")[:-1]]]
