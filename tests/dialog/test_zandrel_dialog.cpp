// The main dialog: its template, keyboard, data exchange, file choosers,
// dropped files, the outcome's message box, the run on another thread, and
// what protects the user's files.
#include <sys/stat.h>
#include <unistd.h>

#include <QCursor>
#include <QDir>
#include <QDragEnterEvent>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QPushButton>
#include <QTemporaryDir>
#include <QUrl>
#include <cerrno>
#include <cstring>
#include <optional>
#include <thread>

#include "capture_bytes.h"
#include "dialog_test_support.h"
#include "resource.h"

namespace {

const QByteArray kPlain = "first line\nsecond line\nthird line\n";
// An 83-character frame line: "****" at 21, "HDLC" at 43, three octets
// (a SABME); and the same line with a UA.
const QByteArray kFrame =
    QByteArray(21, '.') + "****" + QByteArray(18, '.') + "HDLC 3 ...0x02 0x01 0x7f " + QByteArray(14, '.') + "\n";
const QByteArray kUa = QByteArray(kFrame).replace("0x7f", "0x73");

QByteArray ReadAll(const QString& p) {
  QFile f(p);
  return f.open(QIODevice::ReadOnly) ? f.readAll() : "<missing>";
}

bool WriteAll(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QString Reason(int error) { return QString::fromLocal8Bit(std::strerror(error)); }

// Filters, default suffix, initial name and overwrite prompt in one line.
QString Describe(const zandrel::FileChooserRequest& r) {
  return QStringList{r.nameFilters.join(", "), r.defaultSuffix, r.initialFileName, r.confirmOverwrite ? "ask" : "-"}
      .join(" | ");
}

}  // namespace

class ZandrelDialogTest : public QObject {
  Q_OBJECT

 private slots:
  void layoutTabOrderAndNoDefaultButton() {
    ShownDialog d;
    CZandrelDlg& dlg = d.dlg;
    QCOMPARE(dlg.windowTitle(), QString("Velmora"));
    QCOMPARE(dlg.minimumSize(), dlg.maximumSize());
    QCOMPARE(dlg.windowFlags() & (Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint),
             Qt::WindowFlags(Qt::WindowMinimizeButtonHint));

    for (QPushButton* button : dlg.findChildren<QPushButton*>())
      QVERIFY(!button->isDefault() && !button->autoDefault());

    // Exit has the focus first; Tab walks the template order and wraps.
    for (int id :
         {IDCANCEL, IDC_INPUT_PATH, IDC_OUTPUT_PATH, IDC_BROWSE_INPUT, IDC_BROWSE_OUTPUT, IDC_TRANSLATE, IDCANCEL}) {
      QCOMPARE(dlg.focusWidget(), dlg.GetDlgItem(id));
      QTest::keyClick(dlg.focusWidget(), Qt::Key_Tab);
    }
  }

  void keysEndTheDialog_data() {
    QTest::addColumn<int>("focus");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("result");  // -1: the dialog stays
    QTest::newRow("Enter in input") << IDC_INPUT_PATH << int(Qt::Key_Return) << int(QDialog::Accepted);
    QTest::newRow("Enter in output") << IDC_OUTPUT_PATH << int(Qt::Key_Enter) << int(QDialog::Accepted);
    QTest::newRow("Escape") << IDC_INPUT_PATH << int(Qt::Key_Escape) << int(QDialog::Rejected);
    QTest::newRow("Enter on Exit") << IDCANCEL << int(Qt::Key_Return) << int(QDialog::Rejected);
    QTest::newRow("Enter on Translate") << IDC_TRANSLATE << int(Qt::Key_Return) << -1;
  }

  void keysEndTheDialog() {
    QFETCH(int, focus);
    QFETCH(int, key);
    QFETCH(int, result);
    ShownDialog d;
    d.dlg.GetDlgItem(focus)->setFocus();
    QTest::keyClick(d.dlg.GetDlgItem(focus), Qt::Key(key));
    QCOMPARE(d.dlg.isVisible(), result < 0);
    if (result >= 0) QCOMPARE(d.dlg.result(), result);
    QCOMPARE(d.messages.size(), size_t(result < 0));  // Translate pressed
  }

  // Each press of Translate ends in the outcome's message box: its text,
  // its caption and its icon.
  void outcomesShowInAMessageBox() {
    QVERIFY(WriteAll(Path("plain.txt"), kPlain) && WriteAll(Path("trace.txt"), "header\n" + kFrame));
    const struct {
      QString input, output, text;
    } runs[] = {
        {Path("plain.txt"), "", "Please select output message file!"},
        {Path("plain.txt"), Path("out.txt"), "The input log file contains no useful information!"},
        {Path("trace.txt"), Path("out.txt"), "Translation is done!"},
    };
    ShownDialog d;
    for (const auto& run : runs) {
      d.Set(IDC_INPUT_PATH, run.input);
      d.Set(IDC_OUTPUT_PATH, run.output);
      d.Click(IDC_TRANSLATE);
      const bool done = &run == std::end(runs) - 1;
      QCOMPARE(d.messages.back().text, run.text);
      QCOMPARE(d.messages.back().caption, QString(done ? "Velmora" : "Error"));
      QCOMPARE(d.messages.back().icon, done ? QMessageBox::Information : QMessageBox::Critical);
    }
    QVERIFY(ReadAll(Path("out.txt")).startsWith("header\n" + kFrame + "ISDN Layer 2: SABME"));
  }

  // The link memory belongs to the dialog, not to the thread that runs it:
  // SABME then UA, pressed on the GUI thread or run on a worker thread.
  void workerThreadRunWritesWhatTheGuiThreadWrites() {
    QVERIFY(WriteAll(Path("sabme.txt"), kFrame) && WriteAll(Path("ua.txt"), kUa));
    ShownDialog gui;
    CZandrelDlg worker;
    for (const QString name : {"sabme", "ua"}) {
      gui.Set(IDC_INPUT_PATH, Path(name + ".txt"));
      gui.Set(IDC_OUTPUT_PATH, Path(name + "-gui.out"));
      gui.Click(IDC_TRANSLATE);
      std::thread([&] { worker.Translate(Path(name + ".txt"), Path(name + "-worker.out")); }).join();
      QCOMPARE(ReadAll(Path(name + "-worker.out")), ReadAll(Path(name + "-gui.out")));
    }
    QVERIFY(ReadAll(Path("ua-gui.out")).endsWith("Acknowledge to SABME, link established\n"));
  }

  // One file under another name would be emptied before it is read.
  void sameFileUnderAnotherNameIsRefused_data() {
    QTest::addColumn<QString>("output");  // relative to the test's folder, the current directory
    QTest::newRow("dot slash") << "./trace.txt";
    QTest::newRow("relative") << "trace.txt";
    QTest::newRow("through the parent") << "../" + QDir(m_dir.path()).dirName() + "/trace.txt";
    QTest::newRow("symbolic link") << "link.txt";
    QTest::newRow("hard link") << "hard.txt";
  }

  void sameFileUnderAnotherNameIsRefused() {
    QFETCH(QString, output);
    const QString trace = Path("trace.txt");
    const QByteArray original = "header\n" + kFrame;
    QFile::remove(Path("link.txt"));
    QFile::remove(Path("hard.txt"));
    QVERIFY(WriteAll(trace, original) && QFile::link(trace, Path("link.txt")) &&
            ::link(QFile::encodeName(trace).constData(), QFile::encodeName(Path("hard.txt")).constData()) == 0);
    const QString previous = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_dir.path()));
    ShownDialog d;
    d.Set(IDC_INPUT_PATH, trace);
    d.Set(IDC_OUTPUT_PATH, output);
    d.Click(IDC_TRANSLATE);
    QDir::setCurrent(previous);
    QCOMPARE(d.messages.size(), size_t(1));
    QCOMPARE(d.messages[0].text, QString("The output message file is as same as the input log file.\n"
                                         "Please select them again!"));
    QCOMPARE(d.messages[0].caption, QString("Error"));
    QCOMPARE(ReadAll(trace), original);
  }

  // A full disk fails one write of the final block, or many; reading a
  // process's memory fails at its first page.
  void lostOutputIsNeverCalledDone_data() {
    QTest::addColumn<int>("lines");
    QTest::addColumn<QString>("input");  // empty: the test's trace of `lines` frame lines
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("failure");
    const QString fullDisk = "Cannot write output message file!\n/dev/full: " + Reason(ENOSPC);
    QTest::newRow("one line") << 1 << ""
                              << "/dev/full" << fullDisk;
    QTest::newRow("many blocks") << 20000 << ""
                                 << "/dev/full" << fullDisk;
    QTest::newRow("read fails") << 0 << "/proc/self/mem" << Path("out.txt")
                                << "Cannot read Input log file to its end!\n/proc/self/mem: " + Reason(EIO);
  }

  void lostOutputIsNeverCalledDone() {
    QFETCH(int, lines);
    QFETCH(QString, input);
    QFETCH(QString, output);
    QFETCH(QString, failure);
    QVERIFY(WriteAll(Path("trace.txt"), kFrame.repeated(lines)));
    ShownDialog d;
    d.Set(IDC_INPUT_PATH, input.isEmpty() ? Path("trace.txt") : input);
    d.Set(IDC_OUTPUT_PATH, output);
    d.Click(IDC_TRANSLATE);
    QCOMPARE(d.messages.size(), size_t(1));
    QCOMPARE(d.messages[0].caption, QString("Error"));
    QCOMPARE(d.messages[0].icon, QMessageBox::Critical);
    QCOMPARE(d.messages[0].text, failure + "\nThe output message file is incomplete.");
  }

  // A capture is translated as a trace log of its frames; one cut off or of
  // another link type says what is wrong, never "Translation is done!".
  void capturesAreTranslatedOrTheirFaultShown_data() {
    using namespace velmora::testing;
    QTest::addColumn<QByteArray>("capture");
    QTest::addColumn<QString>("text");  // %1: the capture's path
    QTest::addColumn<bool>("output");
    const PcapLayout lapd;
    const std::string sabme = PcapHeader(lapd) + PcapRecord(lapd, 1773479702, 5, std::string("\x00\x81\x7f", 3));
    QTest::newRow("cut off") << QByteArray::fromStdString(sabme + PcapRecord(lapd, 0, 0, "\x01", 1000))
                             << "Cannot read Input log file to its end!\n%1: the capture ends at byte 60 in the "
                                "middle of a record, after packet 1 (truncated dump file; tried to read 1000 "
                                "captured bytes, only got 1)\nThe output message file is incomplete."
                             << true;
    QTest::newRow("Ethernet") << QByteArray::fromStdString(PcapHeader({1}))
                              << "Cannot open Input log file!\n%1: link type 1 (EN10MB, Ethernet) is not LAPD: "
                                 "captures of LINKTYPE_LAPD (203) or LINKTYPE_LINUX_LAPD (177) are translated"
                              << false;
  }

  void capturesAreTranslatedOrTheirFaultShown() {
    QFETCH(QByteArray, capture);
    QFETCH(QString, text);
    QFETCH(bool, output);
    QFile::remove(Path("out.txt"));
    QVERIFY(WriteAll(Path("in.pcap"), capture));
    ShownDialog d;
    d.Set(IDC_INPUT_PATH, Path("in.pcap"));
    d.Set(IDC_OUTPUT_PATH, Path("out.txt"));
    d.Click(IDC_TRANSLATE);
    QCOMPARE(d.messages.size(), size_t(1));
    QCOMPARE(d.messages[0].text, text.arg(Path("in.pcap")));
    QCOMPARE(QFile::exists(Path("out.txt")), output);
    if (output) QVERIFY(ReadAll(Path("out.txt")).startsWith("00001 2026-03-14 09:15:02.000005 **** D-CH -- HDLC:3"));
  }

  // The run holds the dialog's thread; the cursor says so until the box.
  void busyCursorWhileTheRunWaitsForInput() {
    const QByteArray fifo = QFile::encodeName(Path("fifo"));
    QVERIFY(::mkfifo(fifo.constData(), 0600) == 0);
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
    std::optional<Qt::CursorShape> shapeDuringRun;
    std::thread writer([&] {
      QFile pipe(QString::fromLocal8Bit(fifo));  // opens once the run opens the other end
      if (!pipe.open(QIODevice::WriteOnly)) return;
      if (const QCursor* cursor = QGuiApplication::overrideCursor()) shapeDuringRun = cursor->shape();
      pipe.write(kFrame);
    });
    ShownDialog d;
    d.Set(IDC_INPUT_PATH, QString::fromLocal8Bit(fifo));
    d.Set(IDC_OUTPUT_PATH, Path("out.txt"));
    d.Click(IDC_TRANSLATE);
    writer.join();
    QCOMPARE(shapeDuringRun, std::optional(Qt::WaitCursor));
    QVERIFY(QGuiApplication::overrideCursor() == nullptr);
    QCOMPARE(d.messages.size(), size_t(1));
    QCOMPARE(d.messages[0].text, QString("Translation is done!"));
  }

  void browseDropAndTheDataExchangeRules() {
    ShownDialog d;
    d.Type(IDC_OUTPUT_PATH, "typed-out.txt");  // an output edit takes both fields
    d.openAnswer = "/data/in.txt";
    d.Click(IDC_BROWSE_INPUT);
    QCOMPARE(
        Describe(d.choosers.at(0)),
        QString("Log Files (*.txt), Trace logs (*.txt *.log), Captures (*.pcap *.pcapng), PBX PRI debug (*.txt *.log), "
                "Router ISDN debug (*.txt *.log), Hex dumps (*.txt *.log), All Files (*) | txt |  | -"));
    QCOMPARE(d.Text(IDC_INPUT_PATH), QString("/data/in.txt"));
    QCOMPARE(d.Text(IDC_OUTPUT_PATH), QString("typed-out.txt"));

    // Cancel leaves even an input that was typed but never taken.
    d.Type(IDC_INPUT_PATH, "x");
    d.openAnswer.reset();
    d.Click(IDC_BROWSE_INPUT);
    QCOMPARE(d.Text(IDC_INPUT_PATH), QString("/data/in.txtx"));
    QCOMPARE(d.dlg.InputPath(), QString("/data/in.txt"));

    // Save As shows both members, so that input is dropped.
    d.saveAnswer = "/data/message.txt";
    d.Click(IDC_BROWSE_OUTPUT);
    QCOMPARE(Describe(d.choosers.at(2)), QString("Message Files (*.txt), All Files (*) | txt | message | ask"));
    QCOMPARE(d.Text(IDC_OUTPUT_PATH), QString("/data/message.txt"));
    QCOMPARE(d.Text(IDC_INPUT_PATH), QString("/data/in.txt"));

    // Any edit of the output field takes the input field too.
    d.Type(IDC_INPUT_PATH, "y");
    QTest::keyClick(d.dlg.GetDlgItem(IDC_OUTPUT_PATH), Qt::Key_Backspace);
    QCOMPARE(d.dlg.InputPath(), QString("/data/in.txty"));
    QCOMPARE(d.dlg.OutputPath(), QString("/data/message.tx"));

    // A dropped file is taken as if chosen; a drag without one is refused.
    QMimeData text, file;
    text.setText("not a file");
    file.setUrls({QUrl::fromLocalFile(Path("trace.txt"))});
    for (QMimeData* mime : {&text, &file}) {
      QDragEnterEvent enter(QPoint(9, 9), Qt::CopyAction, mime, Qt::LeftButton, Qt::NoModifier);
      QApplication::sendEvent(&d.dlg, &enter);
      QCOMPARE(enter.isAccepted(), mime == &file);
    }
    QDropEvent drop(QPoint(9, 9), Qt::CopyAction, &file, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&d.dlg, &drop);
    QCOMPARE(d.Text(IDC_INPUT_PATH), Path("trace.txt"));
    QCOMPARE(d.Text(IDC_OUTPUT_PATH), QString("/data/message.tx"));
  }

  void windowsFiltersBecomeQtNameFilters() {  // a description cut short has no pattern
    QCOMPARE(zandrel::NameFiltersFromFilterString(u"Traces (*.trc;*.log)|*.trc;*.log|Everything|*.*|Cut"),
             QStringList({"Traces (*.trc *.log)", "Everything (*)"}));
  }

 private:
  QString Path(const QString& name) const { return m_dir.filePath(name); }
  QTemporaryDir m_dir;
};

QTEST_MAIN(ZandrelDialogTest)
#include "test_zandrel_dialog.moc"
