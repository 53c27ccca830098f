// The main dialog: its template, keyboard, data exchange, file choosers,
// dropped files and the message box of every run outcome.
#include <sys/stat.h>
#include <unistd.h>

#include <QCursor>
#include <QDir>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QFile>
#include <QFontMetrics>
#include <QLabel>
#include <QMimeData>
#include <QPushButton>
#include <QTemporaryDir>
#include <QUrl>
#include <cerrno>
#include <cstring>
#include <optional>
#include <thread>

#include "dialog_test_support.h"
#include "zandrel/resource.h"

namespace {

const QByteArray kPlain = "first line\nsecond line\nthird line\n";
const QByteArray kStale = "stale text that a run must drop\n";
// An 83-character frame line: "****" at 21, "HDLC" at 43, three octets.
const QByteArray kFrame = "....................." "****" ".................." "HDLC 3 ..." "0x02 0x01 0x7f "
                          "..............\n";

QByteArray ReadAll(const QString& p) { QFile f(p); return f.open(QIODevice::ReadOnly) ? f.readAll() : "<missing>"; }

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
    QCOMPARE(dlg.font().pointSize(), 8);
    const QFontMetrics metrics(dlg.font());
    const auto x = [&](int units) { return qRound(units * metrics.averageCharWidth() / 4.0); };
    const auto y = [&](int units) { return qRound(units * metrics.height() / 8.0); };
    QCOMPARE(dlg.size(), QSize(x(230), y(113)));
    QCOMPARE(dlg.minimumSize(), dlg.maximumSize());
    QCOMPARE(dlg.GetDlgItem(IDCANCEL)->geometry(), QRect(x(133), y(81), x(50), y(14)));
    QCOMPARE(dlg.GetDlgItem(IDC_BROWSE_OUTPUT)->geometry(), QRect(x(200), y(52), x(15), y(14)));
    QCOMPARE(dlg.windowFlags() & (Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint),
             Qt::WindowFlags(Qt::WindowMinimizeButtonHint));

    QStringList texts;
    for (QLabel* label : dlg.findChildren<QLabel*>()) texts << label->text();
    for (QPushButton* b : dlg.findChildren<QPushButton*>())
      texts << b->text() + (b->isDefault() || b->autoDefault() ? " (default)" : "");
    QCOMPARE(texts, QStringList({"Input Log File:", "Output Log File:", "E&xit", "...", "...", "&Translate"}));

    // Exit has the focus first; Tab walks the template order and wraps.
    for (int id : {IDCANCEL, IDC_INPUT_PATH, IDC_OUTPUT_PATH, IDC_BROWSE_INPUT, IDC_BROWSE_OUTPUT, IDC_TRANSLATE,
                   IDCANCEL}) {
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

  void everyOutcomeShowsItsMessageBox_data() {
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("text");  // of an error, but for the last row
    QTest::newRow("both empty") << "" << "" << "Please select input log file!";
    QTest::newRow("no output") << "plain.txt" << "" << "Please select output message file!";
    QTest::newRow("same path") << "plain.txt" << "plain.txt"
                               << "The output message file is as same as the input log file.\n"
                                  "Please select them again!";
    QTest::newRow("missing input") << "missing.txt" << "out.txt" << "Cannot open Input log file!";
    QTest::newRow("output folder missing") << "plain.txt" << "nowhere/out.txt" << "Cannot open output message file!";
    QTest::newRow("no frame line") << "plain.txt" << "out.txt" << "The input log file contains no useful information!";
    QTest::newRow("frame line") << "trace.txt" << "out.txt" << "Translation is done!";
  }

  void everyOutcomeShowsItsMessageBox() {  // twice: the second run ends the same way
    QFETCH(QString, input);
    QFETCH(QString, output);
    const QString out = m_dir.filePath("out.txt");
    QVERIFY(WriteAll(m_dir.filePath("plain.txt"), kPlain) && WriteAll(out, kStale) &&
            WriteAll(m_dir.filePath("trace.txt"), "header\n" + kFrame));
    ShownDialog d;
    d.Type(IDC_INPUT_PATH, input.isEmpty() ? input : m_dir.filePath(input));
    d.Type(IDC_OUTPUT_PATH, output.isEmpty() ? output : m_dir.filePath(output));
    d.Click(IDC_TRANSLATE);
    d.Click(IDC_TRANSLATE);
    QCOMPARE(d.messages.size(), size_t(2));
    const bool done = input == "trace.txt";
    for (const zandrel::MessageRequest& message : d.messages) {
      QTEST(message.text, "text");
      QCOMPARE(message.caption, QString(done ? "Velmora" : "Error"));
      QCOMPARE(message.icon, done ? QMessageBox::Information : QMessageBox::Critical);
    }
    QCOMPARE(ReadAll(m_dir.filePath("plain.txt")), kPlain);
    if (input == "missing.txt") QCOMPARE(ReadAll(out), kStale);
    if (input == "plain.txt" && output == "out.txt") QCOMPARE(ReadAll(out), kPlain);
    if (done) QVERIFY(ReadAll(out).startsWith("header\n" + kFrame));
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
    const QString trace = m_dir.filePath("trace.txt");
    const QByteArray original = "header\n" + kFrame;
    QFile::remove(m_dir.filePath("link.txt"));
    QFile::remove(m_dir.filePath("hard.txt"));
    QVERIFY(WriteAll(trace, original) && QFile::link(trace, m_dir.filePath("link.txt")) &&
            ::link(QFile::encodeName(trace).constData(), QFile::encodeName(m_dir.filePath("hard.txt")).constData()) == 0);
    const QString previous = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_dir.path()));
    ShownDialog d;
    d.Type(IDC_INPUT_PATH, trace);
    d.Type(IDC_OUTPUT_PATH, output);
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
    QTest::newRow("one line") << 1 << "" << "/dev/full" << fullDisk;
    QTest::newRow("many blocks") << 20000 << "" << "/dev/full" << fullDisk;
    QTest::newRow("read fails") << 0 << "/proc/self/mem" << m_dir.filePath("out.txt")
                                << "Cannot read Input log file to its end!\n/proc/self/mem: " + Reason(EIO);
  }

  void lostOutputIsNeverCalledDone() {
    QFETCH(int, lines);
    QFETCH(QString, input);
    QFETCH(QString, output);
    QFETCH(QString, failure);
    QVERIFY(WriteAll(m_dir.filePath("trace.txt"), kFrame.repeated(lines)));
    ShownDialog d;
    d.Type(IDC_INPUT_PATH, input.isEmpty() ? m_dir.filePath("trace.txt") : input);
    d.Type(IDC_OUTPUT_PATH, output);
    d.Click(IDC_TRANSLATE);
    QCOMPARE(d.messages.size(), size_t(1));
    QCOMPARE(d.messages[0].caption, QString("Error"));
    QCOMPARE(d.messages[0].icon, QMessageBox::Critical);
    QCOMPARE(d.messages[0].text, failure + "\nThe output message file is incomplete.");
  }

  // The run holds the dialog's thread; the cursor says so until the box.
  void busyCursorWhileTheRunWaitsForInput() {
    const QByteArray fifo = QFile::encodeName(m_dir.filePath("fifo"));
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
    d.Type(IDC_INPUT_PATH, QString::fromLocal8Bit(fifo));
    d.Type(IDC_OUTPUT_PATH, m_dir.filePath("out.txt"));
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
    QCOMPARE(Describe(d.choosers.at(0)), QString("Log Files (*.txt), All Files (*) | txt |  | -"));
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
    file.setUrls({QUrl::fromLocalFile(m_dir.filePath("trace.txt"))});
    for (QMimeData* mime : {&text, &file}) {
      QDragEnterEvent enter(QPoint(9, 9), Qt::CopyAction, mime, Qt::LeftButton, Qt::NoModifier);
      QApplication::sendEvent(&d.dlg, &enter);
      QCOMPARE(enter.isAccepted(), mime == &file);
    }
    QDropEvent drop(QPoint(9, 9), Qt::CopyAction, &file, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&d.dlg, &drop);
    QCOMPARE(d.Text(IDC_INPUT_PATH), m_dir.filePath("trace.txt"));
    QCOMPARE(d.Text(IDC_OUTPUT_PATH), QString("/data/message.tx"));
  }

  void windowsFiltersBecomeQtNameFilters() {  // a description cut short has no pattern
    QCOMPARE(zandrel::NameFiltersFromFilterString(u"Traces (*.trc;*.log)|*.trc;*.log|Everything|*.*|Cut"),
             QStringList({"Traces (*.trc *.log)", "Everything (*)"}));
  }

 private:
  QTemporaryDir m_dir;
};

QTEST_MAIN(ZandrelDialogTest)
#include "test_zandrel_dialog.moc"
