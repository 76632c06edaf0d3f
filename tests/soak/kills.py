# Kills the development server again and again while clients write. No row may be missing whose insert was answered, and
# no transaction may be incomplete.
import random
import threading
import time

import pymssql
from pymssql._mssql import MSSQLException  # the lower layer raises it if the server ends during a close

from test_machine import DevServer, wait_for

WRITERS = 4
KILLS, SHORT_KILLS = 1000, 8
LONGEST_LIFE = 0.25  # seconds from the first rows to the kill, at most
BIG = 3  # rows of a transaction
END_OF_WRITER = 60  # seconds in which a writer must notice that its server is gone


class Writer(threading.Thread):
    """A client that inserts rows, one by one or several in a transaction, until its server is gone."""

    def __init__(self, server, number, life):
        super().__init__(daemon=True)
        self.server, self.number, self.life = server, number, life
        self.answered, self.sent = 0, 0
        self.transactions, self.open_transaction = [], None
        self.complaint = None

    def run(self):
        try:
            with self.server.connect("Kills") as connection, connection.cursor() as cursor:
                while True:
                    self.write(cursor)
        except (pymssql.Error, MSSQLException):
            pass  # the server was killed
        except Exception as error:  # pylint: disable=broad-except
            self.complaint = repr(error)

    def write(self, cursor):
        rows = BIG if self.sent % 5 == 4 else 1
        first = self.sent
        self.sent += rows
        inserts = " ".join(f"INSERT Written VALUES ({self.life}, {self.number}, {first + i}, REPLICATE('x', 200))"
                           for i in range(rows))
        if rows > 1:
            self.transactions.append(range(first, self.sent))
            cursor.execute(f"BEGIN TRAN {inserts} COMMIT")
        else:
            cursor.execute(inserts)
        self.answered = self.sent


def check_life(part, server, life, writers):
    """Compares the rows of the server's last life, which is the time from its start to its kill, with the answers that the
    writers received."""
    found = {writer.number: set() for writer in writers}
    for number, row in server.ask(f"SELECT Writer, Number FROM Written WHERE Life = {life}", "Kills"):
        found[number].add(row)
    for writer in writers:
        rows = found[writer.number]
        lost = [row for row in range(writer.answered) if row not in rows]
        part.count("acknowledged rows lost", len(lost))
        part.check(not lost, f"life {life}, writer {writer.number}: rows {lost[:5]} were answered and are gone")
        part.check(all(row < writer.sent for row in rows), f"life {life}: a row that nobody wrote")
        for transaction in writer.transactions:
            part.check(len(rows.intersection(transaction)) in (0, BIG), f"life {life}: half a transaction is there")
        part.check(writer.complaint is None, f"life {life}: {writer.complaint}")
        part.count("acknowledged rows", writer.answered)


def live_and_die(part, server, life, chance):
    writers = [Writer(server, number, life) for number in range(WRITERS)]
    for writer in writers:
        writer.start()
    if chance.random() < 0.9:  # else it may be killed while they log in
        wait_for(lambda: all(writer.answered or not writer.is_alive() for writer in writers), END_OF_WRITER)
    time.sleep(chance.uniform(0, LONGEST_LIFE))
    server.kill()
    for writer in writers:
        writer.join(END_OF_WRITER)
        if not part.check(not writer.is_alive(), f"life {life}: a writer does not notice that its server is gone"):
            return False
    server.start()
    part.count("kills")
    check_life(part, server, life, writers)
    return True


def run(part, settings):
    kills = SHORT_KILLS if settings.short else KILLS
    part.want("kills", KILLS)
    part.counts["acknowledged rows lost"] = 0
    seed = random.randrange(1 << 32)
    part.say(f"the moments come from the seed {seed}")
    chance = random.Random(seed)
    with settings.folder() as folder, DevServer(settings.dev_server, folder) as server:
        server.ask("CREATE DATABASE Kills")
        server.ask("CREATE TABLE Written (Life int, Writer int, Number int, Filler varchar(200), "
                   "PRIMARY KEY (Life, Writer, Number))", "Kills")
        for life in range(kills):
            if not live_and_die(part, server, life, chance) or len(part.failures) > 20:
                break
            part.progress()
        check_all_at_the_end(part, server)


def check_all_at_the_end(part, server):
    """Checks that no kill has removed rows that earlier lives had."""
    rows = server.ask("SELECT COUNT(*) FROM Written", "Kills")[0][0]
    part.check(part.counts.get("acknowledged rows", 0) > 0, "the kills came before anything was written")
    part.check(rows >= part.counts.get("acknowledged rows", 0), f"{rows} rows are there at the end")
