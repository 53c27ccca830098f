// The main dialog: its template, keyboard, data exchange, file choosers,
// dropped files and the message box of every run outcome.
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QFontMetrics>
#include <QLabel>
#include <QMessageBox>
#include <QMimeData>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include "dialog_test_support.h"
#include "zandrel/resource.h"

namespace {

// An 83-character frame line: "****" at 21, "HDLC" at 43, three octets.
QByteArray FrameLine() {
  QByteArray line = QByteArray(21, '.') + "****" + QByteArray(18, '.') + "HDLC 3 ..." + "0x02 0x01 0x7f ";
  return line + QByteArray(82 - line.size(), '.') + '\n';
}

QByteArray ReadAll(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

bool WriteAll(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

}  // namespace

class ZandrelDialogTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QStandardPaths::setTestModeEnabled(true);  // the file dialog keeps its history there
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QVERIFY(m_dir.isValid());
    m_plain = m_dir.filePath("plain.txt");
    m_trace = m_dir.filePath("trace.txt");
    QVERIFY(WriteAll(m_plain, "first line\nsecond line\nthird line\n"));
    QVERIFY(WriteAll(m_trace, "header\n" + FrameLine()));
  }

  void layoutFollowsTheTemplateInDialogUnits() {
    FakeDialogServices services;
    CZandrelDlg dlg(nullptr, &services);
    QCOMPARE(dlg.windowTitle(), QString("Velmora"));
    QCOMPARE(dlg.font().pointSize(), 8);

    const QFontMetrics metrics(dlg.font());
    const auto x = [&](int units) { return qRound(units * metrics.averageCharWidth() / 4.0); };
    const auto y = [&](int units) { return qRound(units * metrics.height() / 8.0); };
    const auto place = [&](int left, int top, int width, int height) {
      return QRect(x(left), y(top), x(width), y(height));
    };
    QCOMPARE(dlg.size(), QSize(x(230), y(113)));
    QCOMPARE(dlg.minimumSize(), dlg.maximumSize());
    QCOMPARE(dlg.GetDlgItem(IDCANCEL)->geometry(), place(133, 81, 50, 14));
    QCOMPARE(dlg.GetDlgItem(IDC_INPUT_PATH)->geometry(), place(7, 19, 188, 14));
    QCOMPARE(dlg.GetDlgItem(IDC_BROWSE_OUTPUT)->geometry(), place(200, 52, 15, 14));
    QCOMPARE(dlg.GetDlgItem(IDC_TRANSLATE)->geometry(), place(41, 81, 50, 14));
    for (QWidget* child : dlg.findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
      QVERIFY2(dlg.rect().contains(child->geometry()), qPrintable(child->metaObject()->className()));
    }

    QCOMPARE(Button(dlg, IDCANCEL)->text(), QString("E&xit"));
    QCOMPARE(Button(dlg, IDC_BROWSE_INPUT)->text(), QString("..."));
    QCOMPARE(Button(dlg, IDC_TRANSLATE)->text(), QString("&Translate"));
    QStringList labels;
    for (QLabel* label : dlg.findChildren<QLabel*>()) labels << label->text();
    QCOMPARE(labels, QStringList({"Input Log File:", "Output Log File:"}));
    QVERIFY(dlg.windowFlags() & Qt::WindowMinimizeButtonHint);
    QVERIFY(!(dlg.windowFlags() & Qt::WindowMaximizeButtonHint));
  }

  void tabOrderStartsAtExitAndNoButtonIsDefault() {
    FakeDialogServices services;
    CZandrelDlg dlg(nullptr, &services);
    dlg.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    QCOMPARE(dlg.focusWidget(), dlg.GetDlgItem(IDCANCEL));

    QList<QWidget*> tabStops;
    for (QWidget* w = dlg.nextInFocusChain(); w != &dlg; w = w->nextInFocusChain()) {
      if (w->focusPolicy() & Qt::TabFocus) tabStops << w;
    }
    const QList<QWidget*> expected = {dlg.GetDlgItem(IDCANCEL),         dlg.GetDlgItem(IDC_INPUT_PATH),
                                      dlg.GetDlgItem(IDC_OUTPUT_PATH),  dlg.GetDlgItem(IDC_BROWSE_INPUT),
                                      dlg.GetDlgItem(IDC_BROWSE_OUTPUT), dlg.GetDlgItem(IDC_TRANSLATE)};
    QCOMPARE(tabStops, expected);
    for (QPushButton* button : dlg.findChildren<QPushButton*>()) {
      QVERIFY(!button->isDefault());
      QVERIFY(!button->autoDefault());
    }

    dlg.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dlg));
    for (int i = 1; i <= expected.size(); ++i) {
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
      QCOMPARE(QApplication::focusWidget(), expected[i % expected.size()]);
    }
  }

  void enterInAFieldAndEscapeEndTheDialog() {
    FakeDialogServices services;
    for (int field : {IDC_INPUT_PATH, IDC_OUTPUT_PATH}) {
      CZandrelDlg dlg(nullptr, &services);
      dlg.show();
      Edit(dlg, field)->setFocus();
      QTest::keyClick(Edit(dlg, field), Qt::Key_Return);
      QVERIFY(!dlg.isVisible());
      QCOMPARE(dlg.result(), int(QDialog::Accepted));
    }
    {
      CZandrelDlg dlg(nullptr, &services);
      dlg.show();
      QTest::keyClick(&dlg, Qt::Key_Escape);
      QVERIFY(!dlg.isVisible());
      QCOMPARE(dlg.result(), int(QDialog::Rejected));
    }
    {
      CZandrelDlg dlg(nullptr, &services);
      dlg.show();
      QTest::mouseClick(Button(dlg, IDCANCEL), Qt::LeftButton);
      QVERIFY(!dlg.isVisible());
      QCOMPARE(dlg.result(), int(QDialog::Rejected));
    }
    {
      // Enter on a focused button presses that button; the dialog stays.
      CZandrelDlg dlg(nullptr, &services);
      dlg.show();
      Button(dlg, IDC_TRANSLATE)->setFocus();
      QTest::keyClick(Button(dlg, IDC_TRANSLATE), Qt::Key_Return);
      QVERIFY(dlg.isVisible());
      QCOMPARE(services.messages.size(), size_t(1));
    }
  }

  void everyOutcomeShowsItsMessageBox_data() {
    QTest::addColumn<QString>("input");
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QMessageBox::Icon>("icon");
    const QString error = "Error";
    const auto critical = QMessageBox::Critical;
    QTest::newRow("both empty") << "" << "" << "Please select input log file!" << error << critical;
    QTest::newRow("no output") << "plain.txt" << "" << "Please select output message file!" << error << critical;
    QTest::newRow("same path") << "plain.txt" << "plain.txt"
                               << "The output message file is as same as the input log file.\n"
                                  "Please select them again!"
                               << error << critical;
    QTest::newRow("missing input") << "missing.txt" << "out.txt" << "Cannot open Input log file!" << error
                                   << critical;
    QTest::newRow("output folder missing") << "plain.txt" << "nowhere/out.txt" << "Cannot open output message file!"
                                           << error << critical;
    QTest::newRow("no frame line") << "plain.txt" << "out.txt"
                                   << "The input log file contains no useful information!" << error << critical;
    QTest::newRow("frame line") << "trace.txt" << "out.txt" << "Translation is done!"
                                << "Velmora" << QMessageBox::Information;
  }

  void everyOutcomeShowsItsMessageBox() {
    QFETCH(QString, input);
    QFETCH(QString, output);
    QFile::remove(m_dir.filePath("out.txt"));
    const QString inputPath = input.isEmpty() ? input : m_dir.filePath(input);
    const QString outputPath = output.isEmpty() ? output : m_dir.filePath(output);
    const QByteArray plainBefore = ReadAll(m_plain);

    FakeDialogServices services;
    CZandrelDlg dlg(nullptr, &services);
    dlg.show();
    QTest::keyClicks(Edit(dlg, IDC_INPUT_PATH), inputPath);
    QTest::keyClicks(Edit(dlg, IDC_OUTPUT_PATH), outputPath);
    QTest::mouseClick(Button(dlg, IDC_TRANSLATE), Qt::LeftButton);

    QCOMPARE(services.messages.size(), size_t(1));
    QTEST(services.messages[0].text, "text");
    QTEST(services.messages[0].caption, "caption");
    QTEST(services.messages[0].icon, "icon");
    QCOMPARE(Edit(dlg, IDC_INPUT_PATH)->text(), inputPath);
    QCOMPARE(Edit(dlg, IDC_OUTPUT_PATH)->text(), outputPath);
    QCOMPARE(ReadAll(m_plain), plainBefore);
    if (input == "missing.txt") QVERIFY(!QFile::exists(outputPath));
    if (input == "plain.txt" && output == "out.txt") QCOMPARE(ReadAll(outputPath), plainBefore);
  }

  void translateTwiceRewritesTheOutput() {
    const QString out = m_dir.filePath("twice.txt");
    FakeDialogServices services;
    CZandrelDlg dlg(nullptr, &services);
    dlg.show();
    QTest::keyClicks(Edit(dlg, IDC_INPUT_PATH), m_trace);
    QTest::keyClicks(Edit(dlg, IDC_OUTPUT_PATH), out);
    QTest::mouseClick(Button(dlg, IDC_TRANSLATE), Qt::LeftButton);
    const QByteArray first = ReadAll(out);
    QVERIFY(first.startsWith("header\n" + FrameLine()));

    QVERIFY(WriteAll(out, "stale text that the second run must drop\n"));
    QTest::mouseClick(Button(dlg, IDC_TRANSLATE), Qt::LeftButton);
    QCOMPARE(services.messages.size(), size_t(2));
    QCOMPARE(services.messages[1].text, QString("Translation is done!"));
    QVERIFY(ReadAll(out).startsWith("header\n" + FrameLine()));
    QVERIFY(!ReadAll(out).contains("stale"));
    QCOMPARE(dlg.InputPath(), m_trace);
    QCOMPARE(dlg.OutputPath(), out);
  }

  void browseForInput() {
    FakeDialogServices services;
    CZandrelDlg dlg(nullptr, &services);
    dlg.show();
    QTest::keyClicks(Edit(dlg, IDC_OUTPUT_PATH), "typed-out.txt");

    services.openAnswer = "/data/traces/in.txt";
    QTest::mouseClick(Button(dlg, IDC_BROWSE_INPUT), Qt::LeftButton);
    QCOMPARE(services.openRequests.size(), size_t(1));
    const zandrel::FileChooserRequest& request = services.openRequests[0];
    QCOMPARE(request.nameFilters, QStringList({"Log Files (*.txt)", "All Files (*)"}));
    QCOMPARE(request.defaultSuffix, QString("txt"));
    QCOMPARE(request.initialFileName, QString());
    QVERIFY(!request.confirmOverwrite);
    QCOMPARE(Edit(dlg, IDC_INPUT_PATH)->text(), QString("/data/traces/in.txt"));
    QCOMPARE(dlg.InputPath(), QString("/data/traces/in.txt"));
    QCOMPARE(Edit(dlg, IDC_OUTPUT_PATH)->text(), QString("typed-out.txt"));

    // Cancel leaves even an input that was typed but never taken.
    Edit(dlg, IDC_INPUT_PATH)->clear();
    QTest::keyClicks(Edit(dlg, IDC_INPUT_PATH), "typed-in.txt");
    services.openAnswer.reset();
    QTest::mouseClick(Button(dlg, IDC_BROWSE_INPUT), Qt::LeftButton);
    QCOMPARE(Edit(dlg, IDC_INPUT_PATH)->text(), QString("typed-in.txt"));
    QCOMPARE(dlg.InputPath(), QString("/data/traces/in.txt"));
  }

  void browseForOutputShowsBothMembers() {
    FakeDialogServices services;
    CZandrelDlg dlg(nullptr, &services);
    dlg.show();
    services.saveAnswer = "/data/traces/message.txt";

    // An input typed by hand is not taken, so showing the members drops it.
    QTest::keyClicks(Edit(dlg, IDC_INPUT_PATH), "hand-typed.txt");
    QTest::mouseClick(Button(dlg, IDC_BROWSE_OUTPUT), Qt::LeftButton);
    QCOMPARE(services.saveRequests.size(), size_t(1));
    const zandrel::FileChooserRequest& request = services.saveRequests[0];
    QCOMPARE(request.nameFilters, QStringList({"Message Files (*.txt)", "All Files (*)"}));
    QCOMPARE(request.defaultSuffix, QString("txt"));
    QCOMPARE(request.initialFileName, QString("message"));
    QVERIFY(request.confirmOverwrite);
    QCOMPARE(Edit(dlg, IDC_OUTPUT_PATH)->text(), QString("/data/traces/message.txt"));
    QCOMPARE(Edit(dlg, IDC_INPUT_PATH)->text(), QString());

    // Any edit of the output field takes both fields, the input one too.
    QTest::keyClicks(Edit(dlg, IDC_INPUT_PATH), "kept.txt");
    QTest::keyClick(Edit(dlg, IDC_OUTPUT_PATH), Qt::Key_Backspace);
    QCOMPARE(dlg.InputPath(), QString("kept.txt"));
    QCOMPARE(dlg.OutputPath(), QString("/data/traces/message.tx"));
    QTest::mouseClick(Button(dlg, IDC_BROWSE_OUTPUT), Qt::LeftButton);
    QCOMPARE(Edit(dlg, IDC_INPUT_PATH)->text(), QString("kept.txt"));
    QCOMPARE(Edit(dlg, IDC_OUTPUT_PATH)->text(), QString("/data/traces/message.txt"));
  }

  void droppedFileFillsTheInput() {
    FakeDialogServices services;
    CZandrelDlg dlg(nullptr, &services);
    dlg.show();
    QTest::keyClicks(Edit(dlg, IDC_OUTPUT_PATH), "out.txt");
    const QPointF middle = QRectF(dlg.rect()).center();

    QMimeData text;
    text.setText("not a file");
    QDragEnterEvent refused(middle.toPoint(), Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    refused.ignore();
    QApplication::sendEvent(&dlg, &refused);
    QVERIFY(!refused.isAccepted());

    QMimeData file;
    file.setUrls({QUrl::fromLocalFile(m_trace)});
    QDragEnterEvent enter(middle.toPoint(), Qt::CopyAction, &file, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(&dlg, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(middle, Qt::CopyAction, &file, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&dlg, &drop);
    QCOMPARE(Edit(dlg, IDC_INPUT_PATH)->text(), m_trace);
    QCOMPARE(Edit(dlg, IDC_OUTPUT_PATH)->text(), QString("out.txt"));
  }

  void windowsFiltersBecomeQtNameFilters() {
    using zandrel::NameFiltersFromFilterString;
    QCOMPARE(NameFiltersFromFilterString(u"Traces (*.trc;*.log)|*.trc;*.log|Everything|*.*||"),
             QStringList({"Traces (*.trc *.log)", "Everything (*)"}));
    // A list cut short after a description has no pattern for it.
    QCOMPARE(NameFiltersFromFilterString(u"Logs|*.txt|Dangling"), QStringList({"Logs (*.txt)"}));
    QCOMPARE(NameFiltersFromFilterString(u"||"), QStringList());
  }

  void platformSaveChooserAddsTheSuffixAndAsksBeforeReplacing() {
    QVERIFY(WriteAll(m_dir.filePath("exists.txt"), "keep me\n"));
    zandrel::QtDialogServices services;
    const zandrel::FileChooserRequest request{"Save As", {"Message Files (*.txt)", "All Files (*)"}, "txt",
                                              "message", true};
    QString initialName;
    bool asked = false;
    OnNextModal<QFileDialog>([&](QFileDialog* chooser) {
      auto* fileName = chooser->findChild<QLineEdit*>("fileNameEdit");
      initialName = fileName->text();
      chooser->setDirectory(m_dir.path());
      fileName->clear();
      QTest::keyClicks(fileName, "exists");
      OnNextModal<QMessageBox>([&](QMessageBox* box) {
        asked = true;
        box->button(QMessageBox::Yes)->click();
      });
      QMetaObject::invokeMethod(chooser, "accept");
    });
    QCOMPARE(services.ChooseFileToSave(nullptr, request), std::optional<QString>(m_dir.filePath("exists.txt")));
    QCOMPARE(initialName, QString("message"));
    QVERIFY(asked);

    OnNextModal<QFileDialog>([&](QFileDialog* chooser) { chooser->reject(); });
    QCOMPARE(services.ChooseFileToSave(nullptr, request), std::nullopt);
  }

  void platformMessageBoxHasOneOkButton() {
    zandrel::QtDialogServices services;
    QString text;
    QString title;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    int buttons = 0;
    OnNextModal<QMessageBox>([&](QMessageBox* box) {
      text = box->text();
      title = box->windowTitle();
      icon = box->icon();
      buttons = int(box->buttons().size());
      box->button(QMessageBox::Ok)->click();
    });
    services.ShowMessage(nullptr, {"first line\nsecond line", "Error", QMessageBox::Critical});
    QCOMPARE(text, QString("first line\nsecond line"));
    QCOMPARE(title, QString("Error"));
    QCOMPARE(icon, QMessageBox::Critical);
    QCOMPARE(buttons, 1);
  }

 private:
  QTemporaryDir m_dir;
  QString m_plain;
  QString m_trace;
};

QTEST_MAIN(ZandrelDialogTest)
#include "test_zandrel_dialog.moc"
