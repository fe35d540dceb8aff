# The Debian package of both programs: cpack -G DEB in the build folder writes
# qorlomanager_VERSION_ARCH.deb. Library dependencies come from dpkg-shlibdeps; the fonts of the
# report engine and the Qt database drivers are loaded at run time and are named here.
set(QORLO_PACKAGE_VERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}.${QORLO_REVISION})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME qorlomanager)
set(CPACK_PACKAGE_VERSION ${QORLO_PACKAGE_VERSION})
set(CPACK_PACKAGE_VENDOR "Tessaly Works")
set(CPACK_PACKAGE_CONTACT "Tessaly Works <${QORLO_SUPPORT_MAILBOX}>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
  "fonts-dejavu-core, fonts-liberation2, libqt6sql6-sqlite, libqt6sql6-psql, libqt6sql6-odbc")
# The desktop program opens its help pages and exports through the desktop's xdg-open.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "cups, odbc-postgresql, libsqliteodbc")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "report scheduler with mail delivery, printing and status pages
QorloMANAGER keeps a schedule of reports, programs and report collections,
each with a next run and a frequency, and runs the item that is due.
Reports read SQLite, PostgreSQL or ODBC data and are exported to PDF,
spreadsheet, CSV, HTML, RTF, text or XML files, then written to disk, mailed
through the program's own SMTP client (with optional TLS) or printed through
CUPS. Business and custom calendars, dynamic dates, multi-runs over parameter
files, command folders for other programs, status pages for a web server and
daily backups are included.
.
The package holds the desktop program qorlomanager and the windowless
qorlomanagerd with systemd user units for one or several schedules.")

include(CPack)
