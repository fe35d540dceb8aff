#pragma once
// The main window's position, size, column widths and sort order, kept in Form.XML; the multi-run
// editor keeps its position and size in a file of the same form, MultiForm.XML.

#include <QString>

class clsViewer
{
public:
    // The settings of the file `fileName` in the application folder.
    explicit clsViewer(const QString &appPath, const QString &fileName = QStringLiteral("Form.XML"));

    // The values of a new object: window measures, state, option, instance folder, no sort column.
    void Initialise();
    // The values start-up puts in place before Form.XML is read for the second time.
    void ApplyStartDefaults();
    // Reads the file if it exists; values missing from it keep theirs.
    void Load(const QString &path);
    void ReadTags(QString &line);
    // Writes the file in the application folder.
    void Save() const;

    // Measures in twips.
    qint32 Viewer_Top = 0;
    qint32 Viewer_Left = 0;
    qint32 Viewer_Width = 0;
    qint32 Viewer_Height = 0;
    qint32 Viewer_Col = 0;
    qint32 Viewer_Col1 = 0;
    qint32 Viewer_Col2 = 0;
    qint32 Viewer_Col3 = 0;
    qint32 Viewer_Col4 = 0;
    qint32 Viewer_Col5 = 0;
    qint32 Viewer_ColDate = 0;
    qint32 Viewer_ColDesc = 0;
    qint32 Viewer_ColFile = 0;
    qint32 Viewer_ColDest = 0;
    qint32 Viewer_ColRun = 0;
    QString Viewer_State;
    QString Viewer_Option;
    QString InstanceFolder;
    QString SortCol;
    // The connection list's file name, written for other programs when set and never read back.
    QString Connection_File;

private:
    QString m_appPath;
    QString m_fileName;
};
