#pragma once
// Output file names of a run: percent codes for date, time and collection, the folders of a path, and
// the extension that goes with an export format.

#include <QString>

namespace OutputNames {

// The CollectionName of the collection being run; empty at all other times. Set by the collection run.
QString &CurrentCollection();

// Replaces the percent codes %a %b %c %d %e %f %h %m %n %p %q %s %t %u %y %z (either case) by the
// present moment or by CurrentCollection(), then makes the folders of the result.
QString ExpandFileCodes(const QString &text);

// Makes every missing folder of the path; the last piece is the file name. A leading "//" keeps its
// first two names as the root, which is never made. Raises QorloError when a folder cannot be made.
void MakeFolders(const QString &path);

// `name` with the extension of the export format `format`, in the folder of `baseFile` when it names no
// folder. The extension is changed when `force` is set or the name has none; an unknown format gives "".
QString FixFileExtension(const QString &name, const QString &baseFile, const QString &format, bool force);

} // namespace OutputNames
