#include "Csv.h"

#include <QTest>

using zaxmat::CsvError;
using zaxmat::CsvLine;
using zaxmat::CsvRow;
using zaxmat::CsvTable;
using zaxmat::ReadCsv;

class tst_ZaxmatCsv : public QObject
{
    Q_OBJECT

private slots:
    void readsCells_data();
    void readsCells();
    void recognisesTheSeparator_data();
    void recognisesTheSeparator();
    void tellsAnEmptyCellFromAnEmptyText();
    void countsTheLinesOfTheFile();
    void refusesWhatIsNoCsv_data();
    void refusesWhatIsNoCsv();
    void writesQuotationMarksOnlyWhereNeeded_data();
    void writesQuotationMarksOnlyWhereNeeded();
    void readsBackWhatItWrote_data();
    void readsBackWhatItWrote();
};

namespace {

QList<QStringList> Cells(const CsvTable& table)
{
    QList<QStringList> cells;
    std::ranges::transform(table.rows, std::back_inserter(cells), &CsvRow::cells);
    return cells;
}

} // namespace

void tst_ZaxmatCsv::readsCells_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QList<QStringList>>("cells");
    const QList<QStringList> two{{"a", "b"}, {"1", "2"}};
    QTest::newRow("line feeds") << QByteArray("a,b\n1,2\n") << two;
    QTest::newRow("carriage returns and line feeds") << QByteArray("a,b\r\n1,2\r\n") << two;
    QTest::newRow("carriage returns") << QByteArray("a,b\r1,2\r") << two;
    QTest::newRow("no line break at the end") << QByteArray("a,b\n1,2") << two;
    QTest::newRow("byte order mark") << QByteArray("\xEF\xBB\xBF"
                                                   "a,b\n1,2\n")
                                     << two;
    QTest::newRow("blank lines") << QByteArray("\n\na,b\r\n\r\n1,2\n\n") << two;
    QTest::newRow("lines of spaces") << QByteArray("  \na,b\n   \r\n1,2\n  ") << two;
    QTest::newRow("lines of tabs") << QByteArray("\t\na,b\n \t \r\n1,2\n\t") << two;
    QTest::newRow("a line of tabs behind the separator") << QByteArray("sep=;\n\t\na;b\n1;2\n") << two;
    QTest::newRow("lines of tabs that separate") << QByteArray("\t\t\na\tb\n\t\n1\t2\n") << two;
    QTest::newRow("a line of what is no blank") << QByteArray("\v\n") << QList<QStringList>{{"\v"}};
    QTest::newRow("a line of spaces in quotation marks")
        << QByteArray("\" \"\n1\n") << QList<QStringList>{{" "}, {"1"}};
    QTest::newRow("quotation marks") << QByteArray("\"a\",\"b\"\n\"1\",2\n") << two;
    QTest::newRow("nothing") << QByteArray() << QList<QStringList>{};
    QTest::newRow("a mark only") << QByteArray("\xEF\xBB\xBF") << QList<QStringList>{};
    QTest::newRow("doubled quotation marks")
        << QByteArray("\"say \"\"ø\"\"\",b\n") << QList<QStringList>{{"say \"ø\"", "b"}};
    QTest::newRow("separators and line breaks inside")
        << QByteArray("\"a,b\r\nc\n\",\";\"\n") << QList<QStringList>{{"a,b\r\nc\n", ";"}};
    QTest::newRow("spaces belong to the cell") << QByteArray(" a , b c \n") << QList<QStringList>{{" a ", " b c "}};
    QTest::newRow("rows of different lengths")
        << QByteArray("a,b\n1\n1,2,3\n") << QList<QStringList>{{"a", "b"}, {"1"}, {"1", "2", "3"}};
    QTest::newRow("letters") << QByteArray("Tôle,\xF0\x9D\x90\x80\n")
                             << QList<QStringList>{{"Tôle", QString::fromUcs4(U"\U0001D400")}};
}

void tst_ZaxmatCsv::readsCells()
{
    QFETCH(const QByteArray, bytes);
    QTEST(Cells(ReadCsv(bytes)), "cells");
}

void tst_ZaxmatCsv::recognisesTheSeparator_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<char>("separator");
    QTest::addColumn<QList<QStringList>>("cells");
    QTest::newRow("comma") << QByteArray("a,b\n1;1,2\n") << ',' << QList<QStringList>{{"a", "b"}, {"1;1", "2"}};
    QTest::newRow("semicolon") << QByteArray("a;b\n1,1;2\n") << ';' << QList<QStringList>{{"a", "b"}, {"1,1", "2"}};
    QTest::newRow("tab") << QByteArray("a\tb\n1,1\t2;\n") << '\t' << QList<QStringList>{{"a", "b"}, {"1,1", "2;"}};
    QTest::newRow("semicolon before comma") << QByteArray("a,b;c\n") << ';' << QList<QStringList>{{"a,b", "c"}};
    QTest::newRow("tab before semicolon") << QByteArray("a;b\tc\n") << '\t' << QList<QStringList>{{"a;b", "c"}};
    QTest::newRow("others in quotation marks")
        << QByteArray("\"a;\tb\",c\n") << ',' << QList<QStringList>{{"a;\tb", "c"}};
    QTest::newRow("told") << QByteArray("sep=,\na;b,c\n") << ',' << QList<QStringList>{{"a;b", "c"}};
    QTest::newRow("behind a line of spaces") << QByteArray(" \na;b\n") << ';' << QList<QStringList>{{"a", "b"}};
    QTest::newRow("told in quotation marks")
        << QByteArray("\"SEP=;\"\r\na,b\r\n") << ';' << QList<QStringList>{{"a,b"}};
    QTest::newRow("tab told") << QByteArray("sep=\t\na,b\n") << '\t' << QList<QStringList>{{"a,b"}};
    QTest::newRow("a title like it") << QByteArray("sep=x\n1\n") << ',' << QList<QStringList>{{"sep=x"}, {"1"}};
    QTest::newRow("one column") << QByteArray("a\n1\n") << ',' << QList<QStringList>{{"a"}, {"1"}};
}

void tst_ZaxmatCsv::recognisesTheSeparator()
{
    QFETCH(const QByteArray, bytes);
    const CsvTable table = ReadCsv(bytes);
    QTEST(table.separator, "separator");
    QTEST(Cells(table), "cells");
}

void tst_ZaxmatCsv::tellsAnEmptyCellFromAnEmptyText()
{
    const QStringList cells = ReadCsv(",\"\",x,\n").rows.value(0).cells;
    QCOMPARE(cells, (QStringList{"", "", "x", ""}));
    QVERIFY(cells[0].isNull());
    QVERIFY(!cells[1].isNull());
    QVERIFY(cells[3].isNull());
}

void tst_ZaxmatCsv::countsTheLinesOfTheFile()
{
    QCOMPARE(ReadCsv("sep=;\r\na\r\n").rows.value(0).line, 2);
    const CsvTable table = ReadCsv("\r\ntitle,b\r\n\r\n\"one\ntwo\r\nthree\",\"x\n\"\r\n\r\nlast,\"y\"\r\n");
    QList<qsizetype> lines;
    std::ranges::transform(table.rows, std::back_inserter(lines), &CsvRow::line);
    QCOMPARE(lines, (QList<qsizetype>{2, 4, 9}));
}

void tst_ZaxmatCsv::refusesWhatIsNoCsv_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<qsizetype>("line");
    QTest::addColumn<QString>("message");
    const QString inside = "a quotation mark stands inside a cell; a cell that holds quotation marks is put in "
                           "quotation marks, and those inside are doubled";
    QTest::newRow("quotation mark inside a cell") << QByteArray("a,b\n1\",2\n") << qsizetype(2) << inside;
    QTest::newRow("text behind a quotation mark") << QByteArray("a,b\n\n\"1\"x,2\n") << qsizetype(3) << inside;
    QTest::newRow("quotation mark never closed")
        << QByteArray("a,b\n1,2\n3,\"4\n5,6\n") << qsizetype(3)
        << QString("a quotation mark of the row that starts here is never closed");
    QTest::newRow("no UTF-8") << QByteArray("a,b\n1,T\xF4le\n") << qsizetype(2)
                              << QString("this is no UTF-8; save the file as CSV in UTF-8");
    QTest::newRow("UTF-16") << QByteArray("\xFF\xFE"
                                          "a\0,\0b\0\n\0",
                                          10)
                            << qsizetype(1) << QString("this is no UTF-8; save the file as CSV in UTF-8");
}

void tst_ZaxmatCsv::refusesWhatIsNoCsv()
{
    QFETCH(const QByteArray, bytes);
    qsizetype line = 0;
    QString message;
    try {
        ReadCsv(bytes);
    } catch (const CsvError& error) {
        line = error.GetLine();
        message = error.GetMessage();
    }
    QTEST(message, "message");
    QTEST(line, "line");
}

void tst_ZaxmatCsv::writesQuotationMarksOnlyWhereNeeded_data()
{
    QTest::addColumn<QStringList>("cells");
    QTest::addColumn<QByteArray>("line");
    QTest::newRow("plain") << QStringList{"a b", "1.5", "ø"} << QByteArray("a b,1.5,ø\r\n");
    QTest::newRow("separators") << QStringList{"a,b", "a;b", "a\tb"} << QByteArray("\"a,b\",\"a;b\",\"a\tb\"\r\n");
    QTest::newRow("quotation marks") << QStringList{"say \"a\""} << QByteArray("\"say \"\"a\"\"\"\r\n");
    QTest::newRow("line breaks") << QStringList{"a\nb", "a\rb"} << QByteArray("\"a\nb\",\"a\rb\"\r\n");
    QTest::newRow("outer spaces") << QStringList{" a", "a ", "a"} << QByteArray("\" a\",\"a \",a\r\n");
    QTest::newRow("empty text and none") << QStringList{"", QString(), "x"} << QByteArray("\"\",,x\r\n");
    QTest::newRow("one empty cell") << QStringList{QString()} << QByteArray("\"\"\r\n");
}

void tst_ZaxmatCsv::writesQuotationMarksOnlyWhereNeeded()
{
    QFETCH(const QStringList, cells);
    QTEST(CsvLine(cells), "line");
}

void tst_ZaxmatCsv::readsBackWhatItWrote_data()
{
    QTest::addColumn<QStringList>("cells");
    QTest::addColumn<char>("separator");
    const QStringList odd{"", "a,b;c\td", "\"", "\"\"", "\r", "\n", "\r\n", " ", "'", QString(QChar(0)), QString()};
    QTest::newRow("commas") << odd << ',';
    QTest::newRow("semicolons") << odd << ';';
    QTest::newRow("tabs") << odd << '\t';
}

void tst_ZaxmatCsv::readsBackWhatItWrote()
{
    QFETCH(const QStringList, cells);
    QFETCH(const char, separator);
    const QStringList titles(cells.size(), "title");
    const CsvTable table = ReadCsv(CsvLine(titles, separator) + CsvLine(cells, separator));
    QCOMPARE(table.separator, separator);
    QCOMPARE(Cells(table), (QList<QStringList>{titles, cells}));
}

QTEST_GUILESS_MAIN(tst_ZaxmatCsv)
#include "tst_ZaxmatCsv.moc"
