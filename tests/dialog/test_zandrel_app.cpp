// Start-up through the application object, and the About box.
#include <QAction>
#include <QPushButton>
#include <QTimer>
#include <functional>

#include "dialog_template.h"
#include "dialog_test_support.h"
#include "resource.h"
#include "zandrel.h"

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace {

// Runs the action inside the next modal window of type T once it is up.
template <class T>
void OnNextModal(std::function<void(T*)> action, int attemptsLeft = 200) {
  QTimer::singleShot(10, [action, attemptsLeft] {
    if (auto* modal = qobject_cast<T*>(QApplication::activeModalWidget()))
      action(modal);
    else if (attemptsLeft > 0)
      OnNextModal<T>(action, attemptsLeft - 1);
  });
}

}  // namespace

class ZandrelAppTest : public QObject {
  Q_OBJECT

 private slots:
  void startUpRunsTheDialogAndEndsWithIt() {
    auto* app = qobject_cast<CZandrelApp*>(QApplication::instance());
    const QList<QSize> sizes = QApplication::windowIcon().availableSizes();
    QVERIFY(app && sizes.contains(QSize(32, 32)) && sizes.contains(QSize(16, 16)));
    bool iconSet = false;
    OnNextModal<CZandrelDlg>([&](CZandrelDlg* dlg) {
      iconSet = !dlg->windowIcon().isNull();
      qobject_cast<QPushButton*>(dlg->GetDlgItem(IDCANCEL))->click();
    });
    QVERIFY(!app->InitInstance());
    QVERIFY(iconSet);
  }

  void aboutBoxOpensFromTheMenu() {
    ShownDialog d;
    QVERIFY(QTest::qWaitForWindowExposed(&d.dlg));
    bool okIsDefault = false;
    OnNextModal<CAboutDlg>([&](CAboutDlg* about) {
      auto* ok = qobject_cast<QPushButton*>(zandrel::FindControl(*about, IDOK));
      okIsDefault = ok->isDefault();
      ok->click();
    });
#ifdef Q_OS_WIN  // the About item, the way the platform offers it
    ::SendMessageW(reinterpret_cast<HWND>(d.dlg.winId()), WM_SYSCOMMAND, IDM_ABOUTBOX, 0);
#else
    QCOMPARE(d.dlg.contextMenuPolicy(), Qt::ActionsContextMenu);
    QCOMPARE(d.dlg.actions().size(), 1);
    QCOMPARE(d.dlg.actions()[0]->text(), QString("&About Zandrel..."));
    d.dlg.actions()[0]->trigger();
#endif
    QVERIFY(okIsDefault);

    QVERIFY(d.dlg.isVisible());
  }
};

int main(int argc, char** argv) {
  CZandrelApp app(argc, argv);
  ZandrelAppTest test;
  return QTest::qExec(&test, argc, argv);
}

#include "test_zandrel_app.moc"
