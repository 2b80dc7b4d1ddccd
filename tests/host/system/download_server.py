"""An HTTP server on loopback that answers well and badly. Prints its port; ends when its standard
input does. With a certificate and its key as arguments it speaks TLS."""

import http.server
import os
import ssl
import sys
import threading

served = 0


class Handler(http.server.BaseHTTPRequestHandler):
    def log_message(self, *_):
        pass

    def answer(self, status, body=b"", announced=None, **headers):
        self.send_response(status)
        for name, value in headers.items():
            self.send_header(name.replace("_", "-"), value)
        if status != 304:
            self.send_header("Content-Length", str(len(body) if announced is None else announced))
        self.end_headers()
        self.wfile.write(body)
        self.wfile.flush()

    def wait_for_the_client_to_go(self):
        try:
            self.connection.recv(1)
        except OSError:
            pass

    def do_GET(self):
        global served
        kind, _, rest = self.path[1:].partition("/")
        if kind == "file":
            self.answer(200, b"content")
        elif kind == "counted":  # may be kept for an hour
            served += 1
            self.answer(200, b"copy %d" % served, Cache_Control="public, max-age=3600", ETag='"1"')
        elif kind == "request":
            self.answer(200, bytes(self.headers) + self.path.encode())
        elif kind == "redirect":
            left = int(rest) - 1
            self.answer(302, Location=f"/redirect/{left}" if left else "/file")
        elif kind == "to":
            self.answer(302, Location=rest)
        elif kind == "status":
            self.answer(int(rest), b"an error page")
        elif kind == "short":
            self.answer(200, b"x" * 5000, announced=100000)
            self.close_connection = True
        elif kind == "stall":
            self.answer(200, b"x", announced=100000)
            self.wait_for_the_client_to_go()
        elif kind == "hang":
            self.wait_for_the_client_to_go()
        elif kind == "chunks":  # and none that ends them
            self.send_response(200)
            self.send_header("Transfer-Encoding", "chunked")
            self.end_headers()
            self.wfile.write(b"5\r\nabcde\r\n")
            self.close_connection = True


def end_with_the_parent():
    sys.stdin.buffer.read()
    os._exit(0)


Handler.protocol_version = "HTTP/1.1"
server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
server.daemon_threads = True
if len(sys.argv) > 1:
    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.load_cert_chain(sys.argv[1], sys.argv[2])
    server.socket = context.wrap_socket(server.socket, server_side=True)
print(server.server_port, flush=True)
threading.Thread(target=end_with_the_parent, daemon=True).start()
server.serve_forever()
