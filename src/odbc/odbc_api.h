// Includes ODBC's own headers, and on Windows the system's types that they need. They define a thousand
// macros, so only the sources of this folder and the fakes of the driver manager include this file.
#pragma once

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#endif

#include <sql.h>
#include <sqlext.h>

/// The diagnostic fields that the drivers for this server add to those of the standard.
inline constexpr SQLSMALLINT kDiagServerState = -1150;
inline constexpr SQLSMALLINT kDiagServerSeverity = -1151;
inline constexpr SQLSMALLINT kDiagServerName = -1152;
inline constexpr SQLSMALLINT kDiagServerProcedure = -1153;
inline constexpr SQLSMALLINT kDiagServerLine = -1154;
