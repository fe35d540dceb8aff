#pragma once
// Pure helpers that take file paths apart and put them together; "/" is the separator.

#include <QString>

namespace CommonFile {

// What follows the last "." anywhere in the path; empty without one.
QString FileExtension(const QString &path);
QString ChangeExtension(const QString &path, const QString &extension);
// The part behind the last "/" without its extension.
QString FileBaseName(const QString &path);
// The part behind the last "/"; the whole path without one.
QString FileNameOnly(const QString &path);
// The part before the last "/"; the path itself without one.
QString FolderOf(const QString &path);
// `name` in `folder`: the two joined by the separator. The name may hold folders of its own.
QString JoinPath(const QString &folder, const QString &name);
// A name without "/" is a file in `folder`; a name with one is a path of its own.
QString CompletePath(const QString &folder, const QString &name);
// The machine's name.
QString ComputerName();

} // namespace CommonFile
