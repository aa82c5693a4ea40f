// The design of frmMain: its controls with their names, places, sizes, fonts, colours and start
// texts, and its menus. Measures are twips, 15 to a pixel; inside picSprite they are pixels.
#include <QAction>
#include <QGroupBox>
#include <QIcon>
#include <QImage>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>

#include "controls.h"
#include "frmMain.h"
#include "hwnd.h"
#include "line.h"
#include "listbox.h"
#include "listview.h"
#include "picturebox.h"
#include "scrollbar.h"

namespace vossel {

namespace {

constexpr int32_t kClientWidth = 9135;   // 609 pixels
constexpr int32_t kClientHeight = 5775;  // 385 pixels
constexpr uint32_t kFormBackColor = 0x00DECCCD;
constexpr uint32_t kWhite = 0x00FFFFFF;

QLabel* NewLabel(QWidget* container, const char* caption, int32_t left, int32_t top, int32_t width,
                 int32_t height, Qt::Alignment alignment = Qt::AlignLeft) {
  auto* label = new QLabel(container);
  Move(label, left, top, width, height);
  label->setAlignment(alignment | Qt::AlignTop);
  SetCaption(label, caption);
  return label;
}

QAction* NewItem(QMenu* menu, const char* caption, const QKeySequence& shortcut, bool enabled) {
  QAction* item = menu->addAction(QString::fromLatin1(caption));
  item->setShortcut(shortcut);
  item->setEnabled(enabled);
  return item;
}

}  // namespace

frmMain::frmMain() {
  SetCaption(this, kFormCaption);
  setFont(WindowsFont("Tahoma", 8.25));
  QIcon icon;
  for (int size : {16, 32, 48})
    icon.addFile(QStringLiteral(":/vossel-%1.png").arg(size), QSize(size, size));
  setWindowIcon(icon);
  BuildMenus();
  BuildControls();
  // The client area at its design size below the menu bar.
  resize(kClientWidth / kTwipsPerPixel,
         kClientHeight / kTwipsPerPixel + menuBar()->heightForWidth(kClientWidth / kTwipsPerPixel));

  Client->Resize = [this] { Form_Resize(); };
  BGpanel->Resize = [this] { BGpanel_Resize(); };
  picSprite->Resize = [this] { picSprite_Resize(); };
  scrSprite->Change = [this] { scrSprite_Change(); };
  scrSprite->Scroll = [this] { scrSprite_Scroll(); };
  lvwSprite->ItemClick = [this](const ListItem& Item) { lvwSprite_ItemClick(Item); };
  lvwSprite->ColumnClick = [this](const ColumnHeader& Column) { lvwSprite_ColumnClick(Column); };
  connect(mnuNew, &QAction::triggered, this, [this] { mnuNew_Click(); });
  connect(mnuOpen, &QAction::triggered, this, [this] { mnuOpen_Click(); });
  connect(mnuSaveAs, &QAction::triggered, this, [this] { mnuSaveAs_Click(); });
  connect(mnuQuit, &QAction::triggered, this, [this] { mnuQuit_Click(); });
  connect(mnuChunk, &QAction::triggered, this, [this] { mnuChunk_Click(); });
  connect(mnuAbout, &QAction::triggered, this, [this] { mnuAbout_Click(); });
  setAcceptDrops(true);
}

frmMain::~frmMain() = default;

int frmMain::hWnd() {
  return HandleOfWindow(this);
}

void frmMain::BuildMenus() {
  mnuFile = menuBar()->addMenu(QStringLiteral("&File"));
  mnuNew = NewItem(mnuFile, "&New", QKeySequence(Qt::CTRL | Qt::Key_N), true);
  mnuOpen = NewItem(mnuFile, "&Open...", QKeySequence(Qt::CTRL | Qt::Key_O), true);
  mnuSave = NewItem(mnuFile, "&Save", QKeySequence(Qt::CTRL | Qt::Key_S), false);
  mnuSaveAs = NewItem(mnuFile, "Save &As...", QKeySequence(Qt::Key_F12), false);
  mnuLine1 = mnuFile->addSeparator();
  mnuQuit = NewItem(mnuFile, "&Quit", QKeySequence(), true);
  mnuView = menuBar()->addMenu(QStringLiteral("&View"));
  // Shortcut 51 of the window layer's list: Shift+F1. Nothing stands behind the item.
  mnuViewGrid = NewItem(mnuView, "&Grid", QKeySequence(Qt::SHIFT | Qt::Key_F1), true);
  BuildViewItems();
  BuildFollowItems();
  BuildItemsItem();
  BuildProblemsItem();
  BuildCompareItem();
  mnuTools = menuBar()->addMenu(QStringLiteral("&Tools"));
  mnuChunk = NewItem(mnuTools, "&Chunk Viewer", QKeySequence(), true);
  mnuHelp = menuBar()->addMenu(QStringLiteral("&Help"));
  mnuAbout = NewItem(mnuHelp, "&About Vossel", QKeySequence(), true);
}

void frmMain::BuildControls() {
  const QFont sansSerif = WindowsFont("MS Sans Serif", 8.25);

  Client = new PictureBox(this, false);
  Client->SetBackColor(kFormBackColor);
  Client->SetPicture(QImage(QStringLiteral(":/banner.png")));
  setCentralWidget(Client);

  Grid = new PictureBox(Client, false);
  Move(Grid, 3960, 3960, 3660, 1755);
  Grid->SetPicture(QImage(QStringLiteral(":/grid.png")));
  Grid->setVisible(false);

  BGpanel = new PictureBox(Client, false);
  Move(BGpanel, 0, 1080, 3855, 4575);
  BGpanel->SetBackColor(ButtonFaceColour());

  lvwSprite = new ListView(BGpanel);
  Move(lvwSprite, 120, 3120, 3615, 1335);
  lvwSprite->AddColumn("#", 838);
  lvwSprite->AddColumn("Width", 1058);
  lvwSprite->AddColumn("Height", 1130);
  lvwSprite->AddColumn("Size", 1130);
  lvwSprite->AddColumn("Flags", 1668);

  Li = new ListBox(BGpanel);
  Move(Li, 120, 1560, 3615, 1425);
  Li->setFont(sansSerif);

  Frame = new QGroupBox(BGpanel);
  Move(Frame, 120, 120, 3615, 1095);
  Frame->setFont(sansSerif);
  SetCaption(Frame, "Sprite:");
  Label2 = NewLabel(Frame, "Flags:", 120, 360, 495, 255);
  lblFlags = NewLabel(Frame, "-", 600, 360, 1215, 255, Qt::AlignRight);
  Label5 = NewLabel(Frame, "Offset:", 1920, 360, 615, 255);
  lblOffset = NewLabel(Frame, "-", 2520, 360, 975, 255, Qt::AlignRight);
  Label3 = NewLabel(Frame, "Size:", 120, 720, 495, 255);
  lblSize = NewLabel(Frame, "-", 600, 720, 1215, 255, Qt::AlignRight);
  Label4 = NewLabel(Frame, "Compressed:", 1920, 720, 975, 255);
  lblCompressed = NewLabel(Frame, "-", 2880, 720, 615, 255, Qt::AlignRight);

  lblT = NewLabel(BGpanel, "Messages:", 120, 1320, 3615, 255);

  picSprite = new PictureBox(Client, true);
  picSprite->installEventFilter(this);
  picSprite->Scale = ScaleMode::Pixels;
  Move(picSprite, 3960, 1080, 3615, 2775);
  picSprite->SetBackColor(kWhite);
  picSprite->setFont(sansSerif);

  // Designed in twips; picSprite measures in pixels.
  scrSprite = new ScrollBar(Qt::Vertical, picSprite);
  Move(scrSprite, 3240 / kTwipsPerPixel, 0, 255 / kTwipsPerPixel, 2655 / kTwipsPerPixel);
  scrSprite->setFocusPolicy(Qt::ClickFocus);

  Hlin = new LineControl(Client);
  Hlin->SetEnds(7695, 960, -15, 960);
  Hlin->SetBorderColor(ButtonShadowColour());

  lblStatus = NewLabel(Client, "", 4440, 120, 1125, 195);
  lblStatus->setFont(WindowsFont("Tahoma", 8.25, true));
  QPalette black = lblStatus->palette();
  black.setColor(QPalette::WindowText, Qt::black);
  lblStatus->setPalette(black);
  lblStatus->setAutoFillBackground(false);
  SetAutoSize(lblStatus, true);
  SetCaption(lblStatus, "No file loaded");

  // The panel, the two lists and the picture area take the focus by tab, none of them by a click;
  // the frame, the labels and the scroll bar are passed over.
  Client->setFocusPolicy(Qt::NoFocus);
  for (PictureBox* box : {Grid, BGpanel, picSprite}) box->setFocusPolicy(Qt::TabFocus);
  setTabOrder(BGpanel, Li);
  setTabOrder(Li, picSprite);
  setTabOrder(picSprite, Grid);
  setTabOrder(Grid, lvwSprite);
}

}  // namespace vossel
