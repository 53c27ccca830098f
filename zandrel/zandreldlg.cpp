#include "zandreldlg.h"

#include <QAction>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>
#include <algorithm>
#include <cstring>
#include <string>
#include <string_view>

#include "dialog_services.h"
#include "dialog_template.h"
#include "input_formats.h"
#include "resource.h"

#ifdef Q_OS_WIN
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

namespace {

using zandrel::ControlKind;
using zandrel::ControlTemplate;

constexpr ControlTemplate kAboutControls[] = {
    {IDC_STATIC, ControlKind::Icon, "", 11, 17, 20, 20},
    {IDC_STATIC, ControlKind::Label, "Velmora Version 1.0", 40, 10, 133, 8},
    {IDOK, ControlKind::DefPushButton, "OK", 178, 7, 50, 14},
};

constexpr zandrel::DialogTemplate kAboutTemplate = {"About Velmora", 235, 55, false, kAboutControls};

constexpr ControlTemplate kMainControls[] = {
    {IDCANCEL, ControlKind::PushButton, "E&xit", 133, 81, 50, 14},
    {IDC_STATIC, ControlKind::Label, "Input Log File:", 7, 7, 65, 8},
    {IDC_INPUT_PATH, ControlKind::Edit, "", 7, 19, 188, 14},
    {IDC_STATIC, ControlKind::Label, "Output Log File:", 7, 39, 91, 8},
    {IDC_OUTPUT_PATH, ControlKind::Edit, "", 7, 52, 188, 14},
    {IDC_BROWSE_INPUT, ControlKind::PushButton, "...", 200, 19, 15, 14},
    {IDC_BROWSE_OUTPUT, ControlKind::PushButton, "...", 200, 52, 15, 14},
    {IDC_TRANSLATE, ControlKind::PushButton, "&Translate", 41, 81, 50, 14},
};

constexpr zandrel::DialogTemplate kMainTemplate = {"Velmora", 230, 113, true, kMainControls};

// The input chooser's filter: the described "Log Files (*.txt)" first, then
// one for each input the run reads, then all files.
std::string InputFilter() {
  std::string filter = "Log Files (*.txt)|*.txt|";
  for (const velmora::InputFormatEntry& entry : velmora::InputFormatEntries()) {
    std::string shown(entry.patterns);
    std::replace(shown.begin(), shown.end(), ';', ' ');
    filter.append(entry.description).append(" (").append(shown).append(")|").append(entry.patterns).append("|");
  }
  return filter + "All Files (*.*)|*.*||";
}
constexpr char kMessageFilter[] = "Message Files (*.txt)|*.txt|All Files (*.*)|*.*||";

std::string_view View(const QByteArray& bytes) {
  return std::string_view(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

QString FromView(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

// The wait cursor while a run holds the dialog's thread.
struct BusyCursor {
  BusyCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
  ~BusyCursor() { QGuiApplication::restoreOverrideCursor(); }
  BusyCursor(const BusyCursor&) = delete;
  BusyCursor& operator=(const BusyCursor&) = delete;
};

// The first local file of a drag, with the platform's separators.
QString DroppedFilePath(const QMimeData* mime) {
  if (mime == nullptr) return {};
  for (const QUrl& url : mime->urls()) {
    if (url.isLocalFile()) return QDir::toNativeSeparators(url.toLocalFile());
  }
  return {};
}

}  // namespace

CAboutDlg::CAboutDlg(QWidget* parent) : QDialog(parent) {
  zandrel::ApplyDialogTemplate(*this, kAboutTemplate);
  connect(qobject_cast<QPushButton*>(zandrel::FindControl(*this, IDOK)), &QPushButton::clicked, this, &QDialog::accept);
}

CZandrelDlg::CZandrelDlg(QWidget* parent, zandrel::DialogServices* services)
    : QDialog(parent),
      m_services(services ? *services : zandrel::DefaultDialogServices()),
      m_hIcon(zandrel::ApplicationIcon()) {
  zandrel::ApplyDialogTemplate(*this, kMainTemplate);
  setAcceptDrops(true);
  m_inputEdit = qobject_cast<QLineEdit*>(GetDlgItem(IDC_INPUT_PATH));
  m_outputEdit = qobject_cast<QLineEdit*>(GetDlgItem(IDC_OUTPUT_PATH));

  const auto onClick = [this](int id, void (CZandrelDlg::*handler)()) {
    connect(qobject_cast<QPushButton*>(GetDlgItem(id)), &QPushButton::clicked, this, handler);
  };
  onClick(IDCANCEL, &CZandrelDlg::reject);
  onClick(IDC_BROWSE_INPUT, &CZandrelDlg::OnBrowseInput);
  onClick(IDC_BROWSE_OUTPUT, &CZandrelDlg::OnBrowseOutput);
  onClick(IDC_TRANSLATE, &CZandrelDlg::OnTranslate);
  // textEdited, unlike textChanged, stays silent while the members are shown.
  connect(m_outputEdit, &QLineEdit::textEdited, this, &CZandrelDlg::OnChangeOutputPath);
}

CZandrelDlg::~CZandrelDlg() = default;

QWidget* CZandrelDlg::GetDlgItem(int id) const { return zandrel::FindControl(*this, id); }

void CZandrelDlg::UpdateData(bool saveAndValidate) { DoDataExchange(saveAndValidate); }

void CZandrelDlg::DoDataExchange(bool saveAndValidate) {
  if (saveAndValidate) {
    m_strInputPath = m_inputEdit->text();
    m_strOutputPath = m_outputEdit->text();
  } else {
    m_inputEdit->setText(m_strInputPath);
    m_outputEdit->setText(m_strOutputPath);
  }
}

bool CZandrelDlg::OnInitDialog() {
  UpdateData(false);
  const QString aboutText = zandrel::LoadResourceString(IDS_ABOUTBOX);
  if (!aboutText.isEmpty()) AppendAboutItem(aboutText);
  // Large and small icon at once; the window system also draws the
  // minimised window and its drag image from it.
  setWindowIcon(m_hIcon);
  return true;
}

void CZandrelDlg::AppendAboutItem(const QString& text) {
#ifdef Q_OS_WIN
  const HWND window = reinterpret_cast<HWND>(winId());
  if (const HMENU systemMenu = ::GetSystemMenu(window, FALSE)) {
    ::AppendMenuW(systemMenu, MF_SEPARATOR, 0, nullptr);
    ::AppendMenuW(systemMenu, MF_STRING, IDM_ABOUTBOX, reinterpret_cast<LPCWSTR>(text.utf16()));
  }
  ::SetWindowLongPtrW(window, GWL_EXSTYLE, ::GetWindowLongPtrW(window, GWL_EXSTYLE) | WS_EX_APPWINDOW);
#else
  // No system menu reaches applications here: the item lives in the
  // dialog's context menu and sends the same command.
  auto* about = new QAction(text, this);
  connect(about, &QAction::triggered, this, [this] { OnSysCommand(IDM_ABOUTBOX); });
  addAction(about);
  setContextMenuPolicy(Qt::ActionsContextMenu);
#endif
}

#ifdef Q_OS_WIN
bool CZandrelDlg::nativeEvent(const QByteArray& eventType, void* message, qintptr* result) {
  const auto* msg = static_cast<const MSG*>(message);
  if (msg->message == WM_SYSCOMMAND && OnSysCommand(static_cast<unsigned>(msg->wParam))) {
    *result = 0;
    return true;
  }
  return QDialog::nativeEvent(eventType, message, result);
}
#endif

bool CZandrelDlg::OnSysCommand(unsigned id) {
  if ((id & 0xFFF0) != IDM_ABOUTBOX) return false;
  CAboutDlg about(this);
  about.exec();
  return true;
}

void CZandrelDlg::FocusFirstTabStop() {
  for (QWidget* widget = nextInFocusChain(); widget != this; widget = widget->nextInFocusChain()) {
    if ((widget->focusPolicy() & Qt::TabFocus) && widget->isEnabled() && widget->isVisibleTo(this)) {
      widget->setFocus(Qt::TabFocusReason);
      return;
    }
  }
}

void CZandrelDlg::showEvent(QShowEvent* event) {
  if (!m_initialized) {
    m_initialized = true;
    if (OnInitDialog()) FocusFirstTabStop();
  }
  QDialog::showEvent(event);
}

void CZandrelDlg::keyPressEvent(QKeyEvent* event) {
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (!enter || (event->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier) {
    QDialog::keyPressEvent(event);  // Escape ends the dialog as Cancel
    return;
  }
  // With no default button Enter presses the focused button, and anywhere
  // else (an edit field) it ends the dialog as OK.
  if (auto* button = qobject_cast<QPushButton*>(focusWidget())) {
    button->click();
  } else {
    accept();
  }
}

void CZandrelDlg::dragEnterEvent(QDragEnterEvent* event) {
  if (!DroppedFilePath(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void CZandrelDlg::dragMoveEvent(QDragMoveEvent* event) {
  if (!DroppedFilePath(event->mimeData()).isEmpty()) event->acceptProposedAction();
}

void CZandrelDlg::dropEvent(QDropEvent* event) {
  const QString path = DroppedFilePath(event->mimeData());
  if (path.isEmpty()) return;
  event->acceptProposedAction();
  // As if the file had been chosen through Browse.
  m_strInputPath = path;
  UpdateData(false);
}

void CZandrelDlg::OnBrowseInput() {
  const zandrel::FileChooserRequest request{QStringLiteral("Open"),
                                            zandrel::NameFiltersFromFilterString(QString::fromStdString(InputFilter())),
                                            QStringLiteral("txt"), QString(), false};
  if (const auto chosen = m_services.ChooseFileToOpen(this, request)) {
    m_strInputPath = *chosen;
    UpdateData(false);
  }
}

void CZandrelDlg::OnBrowseOutput() {
  const zandrel::FileChooserRequest request{QStringLiteral("Save As"),
                                            zandrel::NameFiltersFromFilterString(QString::fromLatin1(kMessageFilter)),
                                            QStringLiteral("txt"), QStringLiteral("message"), true};
  if (const auto chosen = m_services.ChooseFileToSave(this, request)) {
    m_strOutputPath = *chosen;
    UpdateData(false);
  }
}

velmora::TranslationOutcome CZandrelDlg::Translate(const QString& inputPath, const QString& outputPath,
                                                   velmora::TranslationReport* report) {
  const QByteArray input = QFile::encodeName(inputPath);
  const QByteArray output = QFile::encodeName(outputPath);
  velmora::TranslationOptions options;
  // One file under two names would be emptied before it is read; and a run
  // whose output could not be written must not be called done.
  options.refuseSameFile = true;
  options.stopOnWriteError = true;
  options.report = report;
  // A capture chosen as input is translated as a trace log of its frames.
  options.inputFormats = velmora::RecognisedInputFormats();
  return velmora::TranslateTraceFile(View(input), View(output), m_linkMemory, options);
}

void CZandrelDlg::OnTranslate() {
  UpdateData(true);
  velmora::TranslationReport report;
  const velmora::TranslationOutcome outcome = [&] {
    const BusyCursor busy;
    return Translate(m_strInputPath, m_strOutputPath, &report);
  }();
  if (const QString failure = FailureText(report); !failure.isEmpty()) {
    m_services.ShowMessage(this, {failure, QStringLiteral("Error"), QMessageBox::Critical});
    return;
  }
  const velmora::OutcomeMessage& message = velmora::DescribeOutcome(outcome);
  const QMessageBox::Icon icon =
      message.icon == velmora::OutcomeIcon::Error ? QMessageBox::Critical : QMessageBox::Information;
  m_services.ShowMessage(this, {FromView(message.text), FromView(message.caption), icon});
}

// What a run that could not use its files whole says instead of its
// outcome: which file and why, and that the message file is incomplete when
// one was written. Empty when both files were read and written whole.
QString CZandrelDlg::FailureText(const velmora::TranslationReport& report) const {
  const QString fault = QString::fromStdString(report.inputFaultText);
  if (report.inputFault == velmora::InputFault::Refused)
    return QStringLiteral("Cannot open Input log file!\n%1: %2").arg(m_strInputPath, fault);
  const auto reason = [](int error) { return QString::fromLocal8Bit(std::strerror(error)); };
  const QString cannotRead = QStringLiteral("Cannot read Input log file to its end!\n%1: %2");
  QString failure;
  if (report.writeError != 0) {
    failure =
        QStringLiteral("Cannot write output message file!\n%1: %2").arg(m_strOutputPath, reason(report.writeError));
  } else if (report.readError != 0) {
    failure = cannotRead.arg(m_strInputPath, reason(report.readError));
  } else if (report.inputFault != velmora::InputFault::None) {
    failure = cannotRead.arg(m_strInputPath, fault);
  } else {
    return {};
  }
  return failure + QStringLiteral("\nThe output message file is incomplete.");
}

void CZandrelDlg::OnChangeOutputPath() { UpdateData(true); }
