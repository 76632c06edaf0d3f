// The one way to ODBC's own headers. They need the system's types in front of them on Windows, and bring a
// thousand macros along: no header of the tree includes this file, only the sources behind platform/odbc*.h
// and the fakes that stand in for the driver manager.
#pragma once

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#endif

#include <sql.h>
#include <sqlext.h>

/// What SQLColAttribute writes numbers to, as the system's header declares it.
#if defined(_WIN32) && !defined(_WIN64)
using OdbcColumnNumber = SQLPOINTER;
#else
using OdbcColumnNumber = SQLLEN*;
#endif

/// Diagnostic fields and column types that the drivers for this server add to the standard's.
inline constexpr SQLSMALLINT kDiagServerState = -1150;
inline constexpr SQLSMALLINT kDiagServerSeverity = -1151;
inline constexpr SQLSMALLINT kDiagServerName = -1152;
inline constexpr SQLSMALLINT kDiagServerProcedure = -1153;
inline constexpr SQLSMALLINT kDiagServerLine = -1154;
