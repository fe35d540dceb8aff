#pragma once
// The program's settings behind View Report Now and the knowledgebase entry, read and written in one
// place for the menu entries and the Output Settings window.

#include <QList>
#include <QString>

class QUrl;

namespace DeskSettings {

// A kind of file View Report Now offers, switched on by its setting in the section File Type.
struct FileKind
{
    const char *setting;
    bool offeredByDefault;
    const char *name;
    const char *patterns;
};
const QList<FileKind> &FileKinds();
bool Offered(const FileKind &kind);
void SetOffered(const FileKind &kind, bool offered);
// The file dialog's filter of the kinds offered.
QString BrowseFilter();

// The host of the maker's knowledgebase (the setting Knowledgebase of the section System), and the
// page of it that the Help menu opens.
QString KnowledgebaseHost();
void SetKnowledgebaseHost(const QString &host);
QUrl KnowledgebasePage();

} // namespace DeskSettings
