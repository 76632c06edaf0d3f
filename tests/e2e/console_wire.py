# A TCP proxy between the program and a server. It can hold back a chosen statement, and it can refuse connections while
# the server is restarted. Its port stays the same when the server's port changes.
import contextlib
import select
import socket
import threading

HERE = "127.0.0.1"


class Wire:
    """The proxy. `port` is the port that the program connects to; up() starts passing data on, down() stops it."""

    def __init__(self):
        # This socket is bound and never listens. It reserves the port while the proxy is down, so that a client cannot
        # reach another process there.
        self.keeper = socket.socket()
        self.keeper.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        self.keeper.bind((HERE, 0))
        self.port = self.keeper.getsockname()[1]
        self.listener = self.held = self.statement = None

    def up(self, server_port):
        self.listener = socket.create_server((HERE, self.port), backlog=16)
        threading.Thread(target=self._accept, args=(self.listener, server_port), daemon=True).start()

    def down(self):
        """Refuses new connections. An existing connection ends when the server ends it."""
        if self.listener is not None:
            self.listener.shutdown(socket.SHUT_RDWR)  # wakes the thread in accept()
            self.listener.close()
            self.listener = None

    def close(self):
        self.down()
        self.keeper.close()

    def hold(self, statement):
        """Holds back the next message of a client that contains this text. Returns the event that is set then."""
        self.held, self.statement = threading.Event(), statement.encode("utf-16-le")
        return self.held

    def _accept(self, listener, server_port):
        with contextlib.suppress(OSError):
            while True:
                client = listener.accept()[0]
                threading.Thread(target=self._link, args=(client, server_port), daemon=True).start()

    def _link(self, client, server_port):
        with contextlib.suppress(OSError), client, socket.create_connection((HERE, server_port)) as server:
            other = {client: server, server: client}
            watched, before = [client, server], b""
            while True:
                for end in select.select(watched, [], [])[0]:
                    data = end.recv(65536)
                    if not data:
                        return
                    if end is client:
                        # A statement may arrive in two pieces.
                        if self.statement and self.statement in before[1 - len(self.statement):] + data:
                            self.statement = None
                            self.held.set()
                            watched.remove(client)
                            continue
                        before = data
                    other[end].sendall(data)
