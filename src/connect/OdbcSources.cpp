#include "OdbcSources.h"

#include <sql.h>
#include <sqlext.h>

namespace OdbcSources {

QStringList DataSourceNames()
{
    QStringList names;
    SQLHENV environment = SQL_NULL_HENV;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment)))
        return names;
    SQLSetEnvAttr(environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLCHAR name[SQL_MAX_DSN_LENGTH + 1];
    SQLCHAR description[256];
    SQLSMALLINT nameLength = 0;
    SQLSMALLINT descriptionLength = 0;
    SQLUSMALLINT direction = SQL_FETCH_FIRST;
    while (SQL_SUCCEEDED(SQLDataSources(environment, direction, name, sizeof name, &nameLength, description,
                                        sizeof description, &descriptionLength))) {
        names.append(QString::fromLocal8Bit(reinterpret_cast<const char *>(name)));
        direction = SQL_FETCH_NEXT;
    }
    SQLFreeHandle(SQL_HANDLE_ENV, environment);
    return names;
}

bool Exists(const QString &name)
{
    return DataSourceNames().contains(name, Qt::CaseInsensitive);
}

} // namespace OdbcSources
