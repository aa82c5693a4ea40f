// frmChunk's design and handlers: Open with the scan, Close, and the chunk list of the sprite that
// the scroll bar stands on.
#include "frmChunk.h"

#include <algorithm>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QEventLoop>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPalette>
#include <QPointer>
#include <QScopeGuard>

#include "controls.h"
#include "filedialog.h"
#include "filewatch.h"
#include "grfdialog.h"
#include "hwnd.h"
#include "listbox.h"
#include "msgbox.h"
#include "picturebox.h"
#include "process.h"
#include "scrollbar.h"
#include "text.h"

namespace vossel {

namespace {

constexpr int32_t kClientWidth = 9615;   // 641 pixels
constexpr int32_t kClientHeight = 6255;  // 417 pixels

QLabel* NewLabel(QWidget* container, const char* caption, int32_t left, int32_t top, int32_t width,
                 int32_t height, Qt::Alignment alignment) {
  auto* label = new QLabel(container);
  Move(label, left, top, width, height);
  label->setAlignment(alignment | Qt::AlignTop);
  SetCaption(label, caption);
  return label;
}

}  // namespace

frmChunk::frmChunk() {
  // A fixed single border: a title with the close box only.
  setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                 Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint |
                 Qt::MSWindowsFixedSizeDialogHint);
  setFont(WindowsFont("Tahoma", 8.25));
  BuildForm();
  Follower = new FileWatch(this);
  Follower->Changed = [this] { Rescan(); };
  // The list keeps the last scan; the name says why it no longer changes.
  Follower->Gone = [this] { SetCaption(lblFilename, FileGoneMessage(Follower->Path())); };
  Follower->Busy = [this] { return scanning_; };
}

frmChunk::~frmChunk() = default;

int frmChunk::hWnd() {
  return HandleOfWindow(this);
}

void frmChunk::BuildForm() {
  ++fillNumber_;
  SetCaption(this, kChunkCaption);

  // A new menu bar and client area. Qt deletes the earlier ones later, not here, since a handler
  // of theirs may still be on the stack.
  auto* bar = new QMenuBar(this);
  mnuFile = bar->addMenu(QStringLiteral("&File"));
  mnuOpen = mnuFile->addAction(QStringLiteral("&Open..."));
  mnuOpen->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
  mnuLine1 = mnuFile->addSeparator();
  mnuClose = mnuFile->addAction(QStringLiteral("&Close Chunk Viewer"));
  setMenuBar(bar);
  connect(mnuOpen, &QAction::triggered, this, [this] { mnuOpen_Click(); });
  connect(mnuClose, &QAction::triggered, this, [this] { mnuClose_Click(); });

  auto* client = new QWidget(this);
  setCentralWidget(client);

  // Made in tab order, which the focus chain follows; labels and Pi take no focus.
  Li = new ListBox(client);
  Move(Li, 120, 480, 9375, 5325);
  Li->setFocusPolicy(Qt::StrongFocus);

  lblFilename = NewLabel(client, "No file opened", 120, 120, 9375, 255, Qt::AlignLeft);

  scrSprite = new ScrollBar(Qt::Horizontal, client);
  Move(scrSprite, 120, 5880, 8895, 255);
  scrSprite->setFocusPolicy(Qt::ClickFocus);
  scrSprite->Change = [this] { scrSprite_Change(); };
  scrSprite->Scroll = [this] { scrSprite_Scroll(); };

  lblSprite = NewLabel(client, "1", 9000, 5880, 495, 255, Qt::AlignRight);

  // The blank panel that shows in Li's place while Li is hidden during a fill.
  Pi = new PictureBox(client, true);
  Move(Pi, 120, 480, 9375, 5325);
  Pi->SetBackColor(BgrOfColour(QApplication::palette().color(QPalette::Base)));
  Pi->setFocusPolicy(Qt::NoFocus);
  Pi->stackUnder(Li);

  // The client area at its design size below the menu bar, and no other size.
  const int32_t w = kClientWidth / kTwipsPerPixel;
  setFixedSize(w, kClientHeight / kTwipsPerPixel + bar->heightForWidth(w));
}

void frmChunk::ShowModal() {
  BuildForm();
  setWindowModality(Qt::ApplicationModal);
  QEventLoop loop;
  QEventLoop* outer = modalLoop_;
  modalLoop_ = &loop;
  show();
  // A close before the loop runs (from a handler that show() let through) has nothing to wait for.
  if (isVisible()) loop.exec();
  modalLoop_ = outer;
}

void frmChunk::closeEvent(QCloseEvent* event) {
  Form_Unload();
  event->accept();
  if (modalLoop_ != nullptr) modalLoop_->quit();
}

void frmChunk::Form_Unload() {
  ++fillNumber_;
  Follower->Stop();
  CloseChunkFile(Viewed);
  SpriteMax = -1;
}

void frmChunk::mnuOpen_Click() {
  if (!FileDialog) FileDialog = std::make_unique<clsFileDialog>();
  FileDialog->InitialDirectory(CurDir());
  FileDialog->ObjectOwner(this);
  if (AskForGrfToOpen(*FileDialog, FileName)) ScanGRF();
}

void frmChunk::mnuClose_Click() {
  close();
}

void frmChunk::ScanGRF() {
  scanning_ = true;
  const auto ended = qScopeGuard([this] { scanning_ = false; });
  const ScanOutcome outcome = ScanGrfFile(FileName, Viewed);
  const int32_t count = SpriteCount(Viewed.File);
  switch (outcome.End) {
    case ScanEnd::ReadFailure:
      // Nothing else in the viewer sets the title, so it stays until the window closes.
      SetCaption(this, outcome.Message);
      return;
    case ScanEnd::TooSmall:
      MsgBox(outcome.Message, "Error", MsgBoxIcon::Exclamation);
      return;
    case ScanEnd::InvalidStream:
      MsgBox(outcome.Message);
      break;
    case ScanEnd::Complete:
      break;
  }
  SpriteMax = count - 1;
  scrSprite->SetMax(SpriteMax);
  // The list lets events run; a Close or a new showing then may have replaced the label.
  const QPointer<QLabel> label = lblFilename;
  scrSprite_Change();
  if (label) SetCaption(label, FileName);
  Follower->Follow(Follow ? Viewed.File.Path : std::string());
}

void frmChunk::Rescan() {
  if (scanning_ || Follower->Path().empty()) return;
  BeforeReading(place_, Follower->Path(), scrSprite->Value());
  FileName = Follower->Path();
  ScanGRF();
  if (!isVisible()) return;  // closed while the list was filled
  const int32_t wanted = SpriteToShow(place_, scrSprite->Max());
  if (FileName == place_.File && wanted != scrSprite->Value()) scrSprite->SetValue(wanted);
  place_.Shown = scrSprite->Value();
}

void frmChunk::scrSprite_Change() {
  const int32_t v = scrSprite->Value();
  SetCaption(lblSprite, std::to_string(v + 1));
  const uint32_t fill = ++fillNumber_;
  Li->Clear();
  Li->setVisible(false);
  const int32_t sprite = v <= SpriteMax ? v : -1;
  ChunkCursor cursor = StartChunks(Viewed, sprite, DefaultAlternative(Viewed.File, sprite));
  ChunkRecord chunk;
  while (!cursor.Done) {
    if (!cursor.Action) {
      DoEvents();
      // A newer position, a scan or a close has taken the list over: this fill adds nothing more.
      if (fill != fillNumber_) return;
    }
    if (!NextChunk(Viewed, cursor, chunk)) break;
    const ChunkLine line = LineOf(chunk);
    Li->AddItem(line.Text);
    Li->SetItemData(Li->NewIndex(), line.ItemData);
  }
  // A file changed since it was opened ends the list with the reason.
  if (cursor.Unreadable) Li->AddItem(UnreadableText(Viewed.File));
  Li->setVisible(true);
}

void frmChunk::scrSprite_Scroll() {
  scrSprite_Change();
}

}  // namespace vossel
