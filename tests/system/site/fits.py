"""Opens every page of the site in headless Chromium, on a desktop and on a phone: fits.py <chromium> <folder with index.html>

A page fails if its content is wider than the window, or is cut off. Tables, code and wide figures may scroll.
"""

import html
import json
import pathlib
import re
import subprocess
import sys
import tempfile

from serve import serve

WIDTHS = {"desktop": 1280, "phone": 390}
# Loads the pages one after the other in a frame, and writes the measurements into the document.
MEASURE = """<!DOCTYPE html><title>Measure</title><body><pre id="found"></pre><script>
const settle = () => new Promise((resolve) => setTimeout(resolve, 50));
(async () => {
  const found = [];
  for (const [device, width] of Object.entries(WIDTHS)) {
    for (const page of PAGES) {
      const frame = document.createElement('iframe');
      frame.style.width = width + 'px';
      frame.style.height = '844px';
      const loaded = new Promise((resolve) => { frame.onload = resolve; });
      frame.src = page;
      document.body.append(frame);
      await loaded;
      await settle();
      const inner = frame.contentDocument;
      const parts = [inner.documentElement, inner.getElementById('doc-content')].filter((part) => part);
      const style = (part) => frame.contentWindow.getComputedStyle(part).overflowX;
      const cut = [...inner.querySelectorAll('.contents *')].filter((part) => ['hidden', 'clip'].includes(style(part)));
      const excess = Math.max(...[...parts, ...cut].map((part) => part.scrollWidth - part.clientWidth));
      found.push([device, page, parts.length, excess]);
      frame.remove();
    }
  }
  document.getElementById('found').textContent = JSON.stringify(found);
})();
</script></body>
"""


def main():
    chromium, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    pages = sorted(file.name for file in folder.glob("*.html"))
    script = MEASURE.replace("WIDTHS", json.dumps(WIDTHS)).replace("PAGES", json.dumps(pages))
    with tempfile.TemporaryDirectory() as scratch:
        root = pathlib.Path(scratch)
        (root / "site").symlink_to(folder.resolve())
        (root / "measure.html").write_text(script.replace("frame.src = page", "frame.src = 'site/' + page"))
        with serve(root) as address:
            dumped = subprocess.run(
                [chromium, "--headless", "--no-sandbox", "--hide-scrollbars", "--disable-gpu", "--disable-quic", "--no-first-run",
                 "--disable-background-networking", "--disable-component-update", "--disable-sync",
                 f"--user-data-dir={scratch}/profile", "--window-size=1400,1000", "--virtual-time-budget=600000",
                 "--dump-dom", address + "measure.html"],
                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True, text=True, timeout=280).stdout
    found = re.search(r'<pre id="found">(.+?)</pre>', dumped)
    if not found:
        sys.exit("the browser did not finish measuring the pages")
    measured = json.loads(html.unescape(found[1]))
    faults = [f"{page} is {excess} pixels too wide on a {device}" for device, page, _, excess in measured if excess > 0]
    faults += [f"{page} has no content" for _, page, parts, _ in measured if parts < 2]
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"{len(measured) // len(WIDTHS)} pages, {len(faults)} faults")
    return 1 if faults or len(measured) != len(WIDTHS) * len(pages) else 0


if __name__ == "__main__":
    sys.exit(main())
