"""The few calls of ODBC that the tests need, made through unixODBC's library and the FreeTDS driver."""

import ctypes

SUCCESS, SUCCESS_WITH_INFO, NO_DATA = 0, 1, 100
_ENVIRONMENT, _CONNECTION, _STATEMENT = 1, 2, 3
_ATTR_ODBC_VERSION, _ATTR_AUTOCOMMIT, _ATTR_QUERY_TIMEOUT = 200, 102, 0
_NTS = -3


class OdbcError(Exception):
    """A call has failed. `records` has (SQLSTATE, native number, text) for each diagnostic."""

    def __init__(self, records):
        super().__init__(records)
        self.records = records


class Connection:
    def __init__(self, connection_string):
        self._odbc = ctypes.CDLL("libodbc.so.2")
        self._environment = self._allocate(_ENVIRONMENT, None)
        self._odbc.SQLSetEnvAttr(self._environment, _ATTR_ODBC_VERSION, ctypes.c_void_p(3), 0)
        self._connection = self._allocate(_CONNECTION, self._environment)
        result = self._odbc.SQLDriverConnect(
            self._connection, None, connection_string.encode(), ctypes.c_short(_NTS), None, ctypes.c_short(0), None, 0
        )
        self._check(result, _CONNECTION, self._connection)

    def _allocate(self, kind, parent):
        handle = ctypes.c_void_p()
        self._odbc.SQLAllocHandle(ctypes.c_short(kind), parent, ctypes.byref(handle))
        return handle

    def _diagnostics(self, kind, handle):
        records = []
        while True:
            state = ctypes.create_string_buffer(6)
            native = ctypes.c_int()
            text = ctypes.create_string_buffer(1024)
            length = ctypes.c_short()
            result = self._odbc.SQLGetDiagRec(
                ctypes.c_short(kind), handle, ctypes.c_short(len(records) + 1), state, ctypes.byref(native), text,
                ctypes.c_short(1024), ctypes.byref(length),
            )
            if ctypes.c_short(result).value not in (SUCCESS, SUCCESS_WITH_INFO):
                return records
            records.append((state.value.decode(), native.value, text.value.decode(errors="replace")))

    def _check(self, result, kind, handle):
        value = ctypes.c_short(result).value
        if value not in (SUCCESS, SUCCESS_WITH_INFO, NO_DATA):
            raise OdbcError(self._diagnostics(kind, handle))
        return value

    def set_autocommit(self, on):
        value = ctypes.c_void_p(1 if on else 0)
        self._check(
            self._odbc.SQLSetConnectAttr(self._connection, _ATTR_AUTOCOMMIT, value, 0), _CONNECTION, self._connection
        )

    def end_transaction(self, commit):
        kind = ctypes.c_short(0 if commit else 1)
        self._check(
            self._odbc.SQLEndTran(ctypes.c_short(_CONNECTION), self._connection, kind), _CONNECTION, self._connection
        )

    def execute(self, sql, parameter=None, timeout=None):
        """Runs `sql`, as a prepared statement if it has a `parameter` (an int). `timeout` is in seconds. Returns all rows of
        the first result, as texts."""
        statement = self._allocate(_STATEMENT, self._connection)
        try:
            if timeout is not None:
                self._odbc.SQLSetStmtAttr(statement, _ATTR_QUERY_TIMEOUT, ctypes.c_void_p(timeout), 0)
            if parameter is None:
                result = self._odbc.SQLExecDirect(statement, sql.encode(), _NTS)
            else:
                result = self._execute_prepared(statement, sql, ctypes.c_int(parameter))
            self._check(result, _STATEMENT, statement)
            return self._rows(statement)
        finally:
            self._odbc.SQLFreeHandle(ctypes.c_short(_STATEMENT), statement)

    def _execute_prepared(self, statement, sql, value):
        self._check(self._odbc.SQLPrepare(statement, sql.encode(), _NTS), _STATEMENT, statement)
        indicator = ctypes.c_long(0)
        integer = ctypes.c_short(4)
        self._odbc.SQLBindParameter(
            statement, ctypes.c_ushort(1), ctypes.c_short(1), integer, integer, ctypes.c_ulong(10), ctypes.c_short(0),
            ctypes.byref(value), ctypes.c_long(0), ctypes.byref(indicator),
        )
        return self._odbc.SQLExecute(statement)

    def _rows(self, statement):
        count = ctypes.c_short()
        self._odbc.SQLNumResultCols(statement, ctypes.byref(count))
        rows = []
        while count.value and self._check(self._odbc.SQLFetch(statement), _STATEMENT, statement) != NO_DATA:
            row = []
            for column in range(1, count.value + 1):
                buffer = ctypes.create_string_buffer(8001)
                length = ctypes.c_long()
                self._check(
                    self._odbc.SQLGetData(
                        statement, ctypes.c_ushort(column), ctypes.c_short(1), buffer, ctypes.c_long(8001),
                        ctypes.byref(length),
                    ),
                    _STATEMENT, statement,
                )
                row.append(None if length.value < 0 else buffer.value.decode())
            rows.append(tuple(row))
        return rows

    def close(self):
        self._odbc.SQLDisconnect(self._connection)
        self._odbc.SQLFreeHandle(ctypes.c_short(_CONNECTION), self._connection)
        self._odbc.SQLFreeHandle(ctypes.c_short(_ENVIRONMENT), self._environment)
