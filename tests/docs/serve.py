"""A folder by HTTP on this machine, as long as a `with` lasts."""

import contextlib
import functools
import http.server
import threading


class QuietHandler(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass

    def end_headers(self):
        self.send_header("LinkChecker", "welcome")  # without it, linkchecker waits between its requests
        super().end_headers()


class QuietServer(http.server.ThreadingHTTPServer):
    def handle_error(self, *_):
        pass  # a client that went away before it had everything


@contextlib.contextmanager
def serve(folder):
    """Gives the address at which the folder is found, with a slash behind it."""
    handler = functools.partial(QuietHandler, directory=folder)
    with QuietServer(("127.0.0.1", 0), handler) as server:
        threading.Thread(target=server.serve_forever, daemon=True).start()
        try:
            yield f"http://127.0.0.1:{server.server_port}/"
        finally:
            server.shutdown()
