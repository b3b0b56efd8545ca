"""Serves a folder by HTTP on this machine while a `with` block runs."""

import contextlib
import functools
import http.server
import io
import pathlib
import re
import threading


class QuietHandler(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass

    def send_head(self):
        """Serves Markdown without its code blocks, since linkchecker would take `[](Point const& p)` for a link."""
        path = pathlib.Path(self.translate_path(self.path))
        if path.suffix != ".md" or not path.is_file():
            return super().send_head()
        text = re.sub(r"^```.*?^```$", "", path.read_text(), flags=re.MULTILINE | re.DOTALL).encode()
        self.send_response(http.HTTPStatus.OK)
        self.send_header("Content-Type", "text/markdown; charset=utf-8")
        self.send_header("Content-Length", str(len(text)))
        self.end_headers()
        return io.BytesIO(text)

    def end_headers(self):
        self.send_header("LinkChecker", "welcome")  # without it, linkchecker waits between its requests
        super().end_headers()


class QuietServer(http.server.ThreadingHTTPServer):
    def handle_error(self, *_):
        pass  # the client closed the connection early


@contextlib.contextmanager
def serve(folder):
    """Yields the address of the folder, with a trailing slash."""
    handler = functools.partial(QuietHandler, directory=folder)
    with QuietServer(("127.0.0.1", 0), handler) as server:
        threading.Thread(target=server.serve_forever, daemon=True).start()
        try:
            yield f"http://127.0.0.1:{server.server_port}/"
        finally:
            server.shutdown()
