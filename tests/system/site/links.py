"""Checks every link: links.py <linkchecker> pages <source directory> | site <folder>

`pages` checks the Markdown files, `site` the pages that Doxygen wrote, including their anchors. linkchecker reads them
by HTTP: started as root, it drops its privileges and could not read the files. External links are listed, not followed.
"""

import pathlib
import re
import subprocess
import sys
import tempfile
import urllib.parse

from serve import serve

SETTINGS = """
[checking]
maxrequestspersecond=1000
[filtering]
# The plugin below reads Markdown.
ignorewarnings=url-content-type-unparseable
[MarkdownCheck]
[AnchorCheck]
"""


def find_outward(files):
    """The external links, each once."""
    link = r'(?:href="|\]\(|<)(https?://[^\s")>]+)'
    return sorted({url for file in files for url in re.findall(link, file.read_text())})


def main():
    linkchecker, kind, folder = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
    if kind == "pages":
        files = sorted(file for place in (".", "docs", "geometry") for file in (folder / place).glob("*.md"))
        starts, options = [str(file.relative_to(folder)) for file in files], ["--recursion-level=1"]
    else:
        files, starts, options = sorted(folder.glob("*.html")), ["index.html"], []
    if not files:
        sys.exit(f"nothing to check in {folder}")

    faults = []
    for url in find_outward(files):
        print(f"not followed: {url}")
        if not re.fullmatch(r"[\w.-]+\.\w+", urllib.parse.urlsplit(url).netloc):
            faults.append(f"not a host name: {url}")
    if kind == "site":
        loads = re.compile(r'<(?:script|img|object|iframe)\b[^>]*?(?:src|data)="https?:|<link\b[^>]*href="https?:')
        faults += [f"loads from the network: {file.name}" for file in files if loads.search(file.read_text())]
    for fault in faults:
        print(fault, file=sys.stderr)

    with tempfile.NamedTemporaryFile("w", suffix=".ini") as settings, serve(folder) as address:
        settings.write(SETTINGS)
        settings.flush()
        checked = subprocess.run(
            [linkchecker, "--no-status", f"--config={settings.name}", *options, *(address + start for start in starts)],
            check=False)
    return 1 if faults else checked.returncode


if __name__ == "__main__":
    sys.exit(main())
