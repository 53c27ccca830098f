// Start-up through the application object, and the About box.
#include <QAction>
#include <QLabel>
#include <QTest>

#include "dialog_test_support.h"
#include "zandrel/dialog_template.h"
#include "zandrel/resource.h"
#include "zandrel/zandrel.h"

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

// Chooses the About item the way the platform offers it.
void ChooseAboutItem(CZandrelDlg& dlg) {
#ifdef Q_OS_WIN
  ::SendMessageW(reinterpret_cast<HWND>(dlg.winId()), WM_SYSCOMMAND, IDM_ABOUTBOX, 0);
#else
  QCOMPARE(dlg.contextMenuPolicy(), Qt::ActionsContextMenu);
  const QList<QAction*> actions = dlg.actions();
  QCOMPARE(actions.size(), 1);
  QCOMPARE(actions[0]->text(), QString("&About Zandrel..."));
  actions[0]->trigger();
#endif
}

}  // namespace

class ZandrelAppTest : public QObject {
  Q_OBJECT

 private slots:
  void startUpRunsTheDialogAndEndsWithIt() {
    auto* app = qobject_cast<CZandrelApp*>(QApplication::instance());
    QVERIFY(app != nullptr);
    const QList<QSize> sizes = QApplication::windowIcon().availableSizes();
    QVERIFY(sizes.contains(QSize(32, 32)));
    QVERIFY(sizes.contains(QSize(16, 16)));

    // Ended with Exit, and again with Enter in the input field.
    for (bool byEnter : {false, true}) {
      QString caption;
      bool iconSet = false;
      OnNextModal<CZandrelDlg>([&](CZandrelDlg* dlg) {
        caption = dlg->windowTitle();
        iconSet = !dlg->windowIcon().isNull();
        if (byEnter) {
          Edit(*dlg, IDC_INPUT_PATH)->setFocus();
          QTest::keyClick(Edit(*dlg, IDC_INPUT_PATH), Qt::Key_Enter);
        } else {
          Button(*dlg, IDCANCEL)->click();
        }
      });
      QVERIFY(!app->InitInstance());
      QCOMPARE(caption, QString("Velmora"));
      QVERIFY(iconSet);
      QCOMPARE(QApplication::activeModalWidget(), nullptr);
    }
  }

  void aboutBoxOpensFromTheMenuAndReturnsUnchanged() {
    FakeDialogServices services;
    CZandrelDlg dlg(nullptr, &services);
    dlg.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dlg));
    QTest::keyClicks(Edit(dlg, IDC_INPUT_PATH), "in.txt");
    QTest::keyClicks(Edit(dlg, IDC_OUTPUT_PATH), "out.txt");

    QString caption;
    QStringList texts;
    QSize iconSize;
    QString okText;
    bool okIsDefault = false;
    OnNextModal<CAboutDlg>([&](CAboutDlg* about) {
      caption = about->windowTitle();
      for (QLabel* label : about->findChildren<QLabel*>()) {
        if (!label->pixmap().isNull()) iconSize = label->pixmap().deviceIndependentSize().toSize();
        if (!label->text().isEmpty()) texts << label->text();
      }
      auto* ok = qobject_cast<QPushButton*>(zandrel::FindControl(*about, IDOK));
      okText = ok->text();
      okIsDefault = ok->isDefault();
      ok->click();
    });
    ChooseAboutItem(dlg);
    QCOMPARE(caption, QString("About Velmora"));
    QCOMPARE(texts, QStringList({"Velmora Version 1.0"}));
    QCOMPARE(iconSize, QSize(32, 32));
    QCOMPARE(okText, QString("OK"));
    QVERIFY(okIsDefault);
    QCOMPARE(Edit(dlg, IDC_INPUT_PATH)->text(), QString("in.txt"));
    QCOMPARE(Edit(dlg, IDC_OUTPUT_PATH)->text(), QString("out.txt"));
    QVERIFY(dlg.isVisible());

    // Escape closes it as well.
    bool closed = false;
    OnNextModal<CAboutDlg>([&](CAboutDlg* about) {
      QTest::keyClick(about, Qt::Key_Escape);
      closed = !about->isVisible();
    });
    ChooseAboutItem(dlg);
    QVERIFY(closed);
    QVERIFY(dlg.isVisible());
  }
};

int main(int argc, char** argv) {
  CZandrelApp app(argc, argv);
  ZandrelAppTest test;
  return QTest::qExec(&test, argc, argv);
}

#include "test_zandrel_app.moc"
