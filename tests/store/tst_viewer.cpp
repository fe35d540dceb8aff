#include "store/clsViewer.h"
#include "Files.h"
#include "TestMain.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Qt::Literals::StringLiterals;

class TestViewer : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void defaults();
    void roundTrip();
    void damagedFile();
};

using namespace TestSupport;

void TestViewer::defaults()
{
    QTemporaryDir app;
    clsViewer viewer(app.path());
    QCOMPARE(viewer.Viewer_Top, 840);
    QCOMPARE(viewer.Viewer_Left, 3210);
    QCOMPARE(viewer.Viewer_Width, 5370);
    QCOMPARE(viewer.Viewer_Height, 2520);
    QCOMPARE(viewer.Viewer_Col, 3000);
    QCOMPARE(viewer.Viewer_ColDate, 0);
    QCOMPARE(viewer.Viewer_State, u"Normal"_s);
    QCOMPARE(viewer.Viewer_Option, u"Folder"_s);
    QCOMPARE(viewer.InstanceFolder, app.filePath(u"Instance"_s));
    QCOMPARE(viewer.SortCol, QString());

    viewer.Viewer_Top = 1;
    viewer.Viewer_State = u"Max"_s;
    viewer.ApplyStartDefaults();
    QCOMPARE(viewer.Viewer_Top, 840);
    QCOMPARE(viewer.Viewer_State, u"Normal"_s);
    QCOMPARE(viewer.Viewer_ColDate, 1980);
    QCOMPARE(viewer.Viewer_ColDesc, 3000);
    QCOMPARE(viewer.Viewer_ColFile, 3000);
    QCOMPARE(viewer.Viewer_ColDest, 3000);
    QCOMPARE(viewer.Viewer_ColRun, 1980);

    // A missing file leaves every value.
    viewer.Load(app.filePath(u"Form.XML"_s));
    QCOMPARE(viewer.Viewer_ColRun, 1980);
}

void TestViewer::roundTrip()
{
    QTemporaryDir app;
    clsViewer viewer(app.path());
    viewer.ApplyStartDefaults();
    viewer.Viewer_Top = -120;
    viewer.Viewer_Col3 = 45;
    viewer.Viewer_State = u"Max"_s;
    viewer.SortCol = u"2"_s;
    viewer.InstanceFolder = u"/srv/qorlo/inst \u00e9"_s;
    viewer.Connection_File = app.filePath(u"Connect.XML"_s);
    viewer.Save();
    const QString path = app.filePath(u"Form.XML"_s);
    const QByteArray first = ReadFile(path);
    QVERIFY(first.contains(
        "<ViewerSettings>\r\n<Viewer-State>Max</Viewer-State>\r\n<Viewer-Option>Folder</Viewer-Option>\r\n"
        "<Viewer-Top>-120</Viewer-Top>\r\n<Viewer-Left>3210</Viewer-Left>\r\n"));
    QVERIFY(first.contains("<Viewer-ColRun>1980</Viewer-ColRun>\r\n<Connection_File>"));
    QVERIFY(first.contains("<SortCol>2</SortCol>\r\n</ViewerSettings>\r\n</ViewerSettingsDoc>\r\n"));

    clsViewer fresh(app.path());
    fresh.Load(path);
    QCOMPARE(fresh.Viewer_Top, -120);
    QCOMPARE(fresh.Viewer_Col3, 45);
    QCOMPARE(fresh.Viewer_ColDate, 1980);
    QCOMPARE(fresh.Viewer_State, u"Max"_s);
    QCOMPARE(fresh.InstanceFolder, u"/srv/qorlo/inst \u00e9"_s);
    QCOMPARE(fresh.Connection_File, QString()); // written for other programs only
    fresh.Connection_File = viewer.Connection_File;
    fresh.Save();
    QCOMPARE(ReadFile(path), first);

    fresh.Connection_File.clear();
    fresh.Save();
    QVERIFY(!ReadFile(path).contains("Connection_File"));
}

void TestViewer::damagedFile()
{
    QTemporaryDir app;
    const QString path = app.filePath(u"Form.XML"_s);
    WriteFile(path, "<!-- <Viewer-Top>1</Viewer-Top> -->\r\n"
                    "  <Viewer-Left>7</Viewer-Left>\r\n" // leading blanks: not matched
                    "<viewer-width>9</viewer-width>\r\n" // case matters
                    "<Viewer-Height>tall</Viewer-Height>\r\n"
                    "<Viewer-Col>99999999999</Viewer-Col>\r\n"
                    "<Viewer-Col1>12.5</Viewer-Col1>\r\n"
                    "<Viewer-Col2>  33 </Viewer-Col2>\r\n"
                    "Viewer-Col4 77\r\n"
                    "<SortCol>3\r\n"
                    "\x01\x02\xff<\x80>\r\n"
                    "<Viewer-State>Fu");
    clsViewer viewer(app.path());
    viewer.Load(path);
    QCOMPARE(viewer.Viewer_Top, 840);
    QCOMPARE(viewer.Viewer_Left, 3210);
    QCOMPARE(viewer.Viewer_Width, 5370);
    QCOMPARE(viewer.Viewer_Height, 2520);
    QCOMPARE(viewer.Viewer_Col, 3000);
    QCOMPARE(viewer.Viewer_Col1, 12); // halves go to the even neighbour
    QCOMPARE(viewer.Viewer_Col2, 33);
    QCOMPARE(viewer.Viewer_Col4, 0);
    QCOMPARE(viewer.SortCol, u"3"_s);
    QCOMPARE(viewer.Viewer_State, u"Fu"_s);
}

QORLO_TEST_MAIN(TestViewer)
#include "tst_viewer.moc"
