// frmMain's View commands: the magnifier, the choice of a sprite's alternative by zoom level and
// colour depth, and the mask layer.
#include <algorithm>
#include <iterator>

#include <QAction>
#include <QActionGroup>
#include <QEventLoop>
#include <QFutureWatcher>
#include <QKeySequence>
#include <QMenu>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QtConcurrent/QtConcurrentRun>

#include "composite.h"
#include "frmMain.h"
#include "palette.h"
#include "picturebox.h"
#include "scrollbar.h"
#include "text.h"

namespace vossel {

namespace {

// The magnifications Zoom In and Zoom Out step through.
constexpr int32_t kSteps[] = {1, 2, 3, 4, 6, 8, 12, 16};

// The zoom levels from the largest picture to the smallest, as the menu lists them.
constexpr struct {
  int32_t Zoom;
  const char* Caption;
} kLevels[] = {
    {1, "Zoomed in 4x"},  {2, "Zoomed in 2x"},  {0, "&Normal"},
    {3, "Zoomed out 2x"}, {4, "Zoomed out 4x"}, {5, "Zoomed out 8x"},
};

QAction* NewCommand(QMenu* menu, const char* caption, QList<QKeySequence> shortcuts) {
  QAction* item = menu->addAction(QString::fromLatin1(caption));
  item->setShortcuts(shortcuts);
  return item;
}

QAction* NewChoice(QMenu* menu, QActionGroup* group, const char* caption, QKeySequence shortcut) {
  QAction* item = NewCommand(menu, caption, {shortcut});
  item->setCheckable(true);
  group->addAction(item);
  return item;
}

}  // namespace

void frmMain::BuildViewItems() {
  mnuLine2 = mnuView->addSeparator();
  // Ctrl+= too: the plus sign needs Shift on most keyboards.
  mnuZoomIn =
      NewCommand(mnuView, "Zoom &In",
                 {QKeySequence(Qt::CTRL | Qt::Key_Plus), QKeySequence(Qt::CTRL | Qt::Key_Equal)});
  mnuZoomOut = NewCommand(mnuView, "Zoom &Out", {QKeySequence(Qt::CTRL | Qt::Key_Minus)});
  mnuActualSize = NewCommand(mnuView, "&Actual Size", {QKeySequence(Qt::CTRL | Qt::Key_0)});
  mnuLine3 = mnuView->addSeparator();

  mnuZoomLevel = mnuView->addMenu(QStringLiteral("Zoom &Level"));
  auto* levels = new QActionGroup(this);
  levels->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
  for (size_t i = 0; i < std::size(kLevels); ++i) {
    const int32_t zoom = kLevels[i].Zoom;
    mnuLevel[static_cast<size_t>(zoom)] =
        NewChoice(mnuZoomLevel, levels, kLevels[i].Caption,
                  QKeySequence(Qt::CTRL | static_cast<Qt::Key>(Qt::Key_1 + i)));
    connect(mnuLevel[static_cast<size_t>(zoom)], &QAction::triggered, this,
            [this, zoom] { mnuLevel_Click(zoom); });
  }
  mnuColourDepth = mnuView->addMenu(QStringLiteral("&Colour Depth"));
  auto* depths = new QActionGroup(this);
  depths->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
  mnuDepth8 = NewChoice(mnuColourDepth, depths, "&8 bpp", QKeySequence(Qt::CTRL | Qt::Key_7));
  mnuDepth32 = NewChoice(mnuColourDepth, depths, "&32 bpp", QKeySequence(Qt::CTRL | Qt::Key_8));
  mnuMaskLayer = NewCommand(mnuView, "&Mask Layer", {QKeySequence(Qt::CTRL | Qt::Key_M)});
  mnuMaskLayer->setCheckable(true);
  mnuLine4 = mnuView->addSeparator();
  mnuPalette = mnuView->addMenu(QStringLiteral("&Palette"));
  auto* palettes = new QActionGroup(this);
  mnuPaletteWindows = NewChoice(mnuPalette, palettes, "&Windows (palette file)", QKeySequence());
  mnuPaletteDos = NewChoice(mnuPalette, palettes, "&DOS", QKeySequence());
  mnuPaletteDeclared = NewChoice(mnuPalette, palettes, "As the file &declares", QKeySequence());
  connect(mnuPaletteWindows, &QAction::triggered, this,
          [this] { mnuPalette_Click(PaletteChoiceKind::Windows); });
  connect(mnuPaletteDos, &QAction::triggered, this,
          [this] { mnuPalette_Click(PaletteChoiceKind::Dos); });
  connect(mnuPaletteDeclared, &QAction::triggered, this,
          [this] { mnuPalette_Click(PaletteChoiceKind::Declared); });
  // The two colour menus say where their maps come from, or why they are off.
  mnuView->setToolTipsVisible(true);
  const auto colourMenu = [this](const char* title,
                                 std::array<QAction*, kCompanyColourCount + 1>& items,
                                 void (frmMain::*click)(int32_t)) {
    QMenu* menu = mnuView->addMenu(QString::fromLatin1(title));
    auto* group = new QActionGroup(this);
    for (int32_t c = -1; c < kCompanyColourCount; ++c) {
      const std::string caption =
          c < 0 ? "&None" : std::string(CompanyColourCaption(static_cast<CompanyColour>(c)));
      QAction* item = NewChoice(menu, group, caption.c_str(), QKeySequence());
      items[static_cast<size_t>(c + 1)] = item;
      connect(item, &QAction::triggered, this, [this, click, c] { (this->*click)(c); });
    }
    return menu;
  };
  mnuCompany = colourMenu("Company &Colour", mnuCompanyColour, &frmMain::mnuCompany_Click);
  mnuCompany2 =
      colourMenu("S&econd Company Colour", mnuCompany2Colour, &frmMain::mnuCompany2_Click);
  mnuTransparent = NewCommand(mnuView, "&Transparent Background", {});
  mnuTransparent->setCheckable(true);
  mnuAlignOrigin = NewCommand(mnuView, "Align to &Origin", {});
  mnuAlignOrigin->setCheckable(true);
  connect(mnuTransparent, &QAction::triggered, this, [this] { mnuTransparent_Click(); });
  connect(mnuAlignOrigin, &QAction::triggered, this, [this] { mnuAlignOrigin_Click(); });
  mnuLine5 = mnuView->addSeparator();
  mnuDetails = NewCommand(mnuView, "&Details", {QKeySequence(Qt::CTRL | Qt::Key_D)});
  mnuSheet = NewCommand(mnuView, "Sprite &Sheet", {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S)});

  connect(mnuZoomIn, &QAction::triggered, this, [this] { mnuZoomIn_Click(); });
  connect(mnuZoomOut, &QAction::triggered, this, [this] { mnuZoomOut_Click(); });
  connect(mnuActualSize, &QAction::triggered, this, [this] { mnuActualSize_Click(); });
  connect(mnuDepth8, &QAction::triggered, this, [this] { mnuDepth_Click(8); });
  connect(mnuDepth32, &QAction::triggered, this, [this] { mnuDepth_Click(32); });
  connect(mnuMaskLayer, &QAction::triggered, this, [this] { mnuMaskLayer_Click(); });
  connect(mnuDetails, &QAction::triggered, this, [this] { mnuDetails_Click(); });
  connect(mnuSheet, &QAction::triggered, this, [this] { mnuSheet_Click(); });
  UpdateViewItems();
}

void frmMain::SetMagnification(int32_t magnification) {
  View.Magnification = std::clamp(magnification, kMinMagnification, kMaxMagnification);
  // The facts stay as they are: only the picture and the magnifier's items change.
  DrawSprite(scrSprite->Value());
  UpdateViewItems();
}

void frmMain::mnuZoomIn_Click() {
  const auto* next = std::upper_bound(std::begin(kSteps), std::end(kSteps), View.Magnification);
  if (next != std::end(kSteps)) SetMagnification(*next);
}

void frmMain::mnuZoomOut_Click() {
  const auto* next = std::lower_bound(std::begin(kSteps), std::end(kSteps), View.Magnification);
  if (next != std::begin(kSteps)) SetMagnification(*(next - 1));
}

void frmMain::mnuActualSize_Click() {
  SetMagnification(1);
}

// A zoom level at the depth on view where the sprite has it, else at the depth it has; a depth
// at the zoom level on view, else at the sprite's level nearest to normal. Either way the sprite
// is shown anew with its facts, and the items follow.
void frmMain::mnuLevel_Click(int32_t zoom) {
  const int32_t v = View.Sprite;
  int32_t a = FindAlternative(File, v, zoom, Offer.Depth);
  if (a < 0) a = FindAlternative(File, v, zoom, 0);
  if (a >= 0) {
    View.Zoom = zoom;
    View.Depth = AlternativeOf(File, v, a).Depth;
  }
  ShowView();
}

void frmMain::mnuDepth_Click(int32_t bits) {
  const int32_t v = View.Sprite;
  int32_t a = FindAlternative(File, v, Offer.Zoom, bits);
  if (a < 0) a = FindAlternative(File, v, -1, bits);
  if (a >= 0) {
    View.Zoom = AlternativeOf(File, v, a).Zoom;
    View.Depth = bits;
  }
  ShowView();
}

void frmMain::mnuMaskLayer_Click() {
  View.Mask = !View.Mask;
  ShowView();
}

void frmMain::mnuPalette_Click(PaletteChoiceKind kind) {
  View.Palette = kind;
  View.PaletteChosen = true;
  ShowView();
}

void frmMain::mnuCompany_Click(int32_t colour) {
  View.Company = colour;
  ShowView();
}

void frmMain::mnuCompany2_Click(int32_t colour) {
  View.Company2 = colour;
  ShowView();
}

void frmMain::mnuTransparent_Click() {
  View.Transparent = !View.Transparent;
  ShowView();
}

void frmMain::mnuAlignOrigin_Click() {
  View.Origin = !View.Origin;
  View.Pan = QPoint();
  ShowView();
}

void frmMain::ReadFileOnce() {
  if (ReadingDone) return;
  ReadFileActions(File, Reading);
  ReadingDone = true;
}

namespace {

// The search's result, pumping the window's events while it runs: the window stays drawn and
// its timers run, as during the passes of a load.
FoundMaps Waited(const QFuture<FoundMaps>& search) {
  if (!search.isValid()) return FoundMaps{};
  if (!search.isFinished()) {
    QFutureWatcher<FoundMaps> watcher;
    QEventLoop loop;
    QObject::connect(&watcher, &QFutureWatcherBase::finished, &loop, &QEventLoop::quit);
    watcher.setFuture(search);
    if (!search.isFinished()) loop.exec();
  }
  return search.result();
}

}  // namespace

void frmMain::StartMapsSearch() {
  // The installed base sets do not change with the file: one search serves every load.
  if (!mapsSearch_.isValid()) mapsSearch_ = QtConcurrent::run([] { return InstalledMaps(); });
}

void frmMain::TakeFileColours() {
  ReadFileOnce();
  Declared = DeclaredPaletteOf(Reading);
  Maps = NearMaps(File, Reading, std::string());
  if (SearchInstalled(Maps)) Maps = WithInstalled(std::move(Maps), Waited(mapsSearch_));
  lookStale_ = true;
}

const Look& frmMain::LookOfView() {
  LookChoices choices;
  // Until the user chooses, the file starts in the palette the window's rule gives it.
  if (View.PaletteChosen) choices.Palette = PaletteChoice{View.Palette, std::string()};
  choices.Company = View.Company;
  choices.Company2 = View.Company2;
  choices.Transparent = View.Transparent;
  choices.Mask = View.Mask;
  choices.Zoom = View.Zoom;
  choices.Depth = View.Depth;
  choices.Folder = AppPath.empty() ? ProgramFolder() : AppPath;
  if (!lookStale_ && choices == lookChoices_) return Looking;
  lookChoices_ = choices;
  lookStale_ = false;
  Looking = ResolveLook(choices, FirstPalette::AsDesigned, File, Declared, Maps);
  View.Palette = Looking.Chosen.Kind;
  // A shipped palette that cannot be read is said, and the picture keeps the palette file's
  // colours.
  if (!Looking.PaletteRead) {
    AddMessage(Looking.PaletteFile + ": " + kMsgBadPalette);
    LoadPalette(PaletteFile, Looking.Palette);
  }
  Palette = Looking.Palette;
  return Looking;
}

bool frmMain::eventFilter(QObject* watched, QEvent* event) {
  if (watched != picSprite) return QMainWindow::eventFilter(watched, event);
  switch (event->type()) {
    case QEvent::MouseButtonPress: {
      const auto* press = static_cast<QMouseEvent*>(event);
      dragging_ = press->button() == Qt::LeftButton;
      dragFrom_ = press->position().toPoint();
      return false;
    }
    case QEvent::MouseMove: {
      if (!dragging_) return false;
      const QPoint at = static_cast<QMouseEvent*>(event)->position().toPoint();
      View.Pan += at - dragFrom_;
      dragFrom_ = at;
      DrawSprite(scrSprite->Value());
      return true;
    }
    case QEvent::MouseButtonRelease:
      dragging_ = false;
      return false;
    case QEvent::Wheel: {
      const auto* wheel = static_cast<QWheelEvent*>(event);
      const int steps = wheel->angleDelta().y() / 120;
      if (steps == 0) return true;
      if (wheel->modifiers() & Qt::ControlModifier) {
        steps > 0 ? mnuZoomIn_Click() : mnuZoomOut_Click();
      } else {
        // As image viewers do: the wheel steps through the sprites, by the one road.
        const int32_t next = std::clamp(scrSprite->Value() - steps, 0, scrSprite->Max());
        if (next != scrSprite->Value()) scrSprite->SetValue(next);
      }
      return true;
    }
    default:
      return false;
  }
}

void frmMain::mnuDetails_Click() {
  if (Details == nullptr) Details = new frmDetails(this);
  Details->show();
  Details->raise();
  UpdateDetails();
}

void frmMain::UpdateDetails() {
  if (Details == nullptr || !Details->isVisible()) return;
  if (View.Sprite < 0 || View.Sprite >= SpriteCount(File)) {
    Details->ShowNothing();
    return;
  }
  ReadFileOnce();
  Details->ShowDetails(IdentityFacts(File, Reading), View.Sprite, DetailsWithItems(View.Sprite));
}

void frmMain::UpdateViewItems() {
  mnuZoomIn->setEnabled(View.Magnification < kMaxMagnification);
  mnuZoomOut->setEnabled(View.Magnification > kMinMagnification);
  mnuActualSize->setEnabled(View.Magnification != 1);

  for (int32_t zoom = 0; zoom < kZoomLevels; ++zoom) {
    QAction* item = mnuLevel[static_cast<size_t>(zoom)];
    item->setEnabled(Offer.Zooms[static_cast<size_t>(zoom)]);
    item->setChecked(Offer.Zoom == zoom);
  }
  mnuDepth8->setEnabled(Offer.Depth8);
  mnuDepth8->setChecked(Offer.Depth == 8);
  mnuDepth32->setEnabled(Offer.Depth32);
  mnuDepth32->setChecked(Offer.Depth == 32);
  // The wish to see the mask stays while browsing; only a picture with one can show it.
  mnuMaskLayer->setEnabled(Offer.Mask);
  mnuMaskLayer->setChecked(View.Mask);

  mnuPaletteWindows->setChecked(View.Palette == PaletteChoiceKind::Windows);
  mnuPaletteDos->setChecked(View.Palette == PaletteChoiceKind::Dos);
  mnuPaletteDeclared->setChecked(View.Palette == PaletteChoiceKind::Declared);
  mnuPaletteDeclared->setText(QString::fromStdString(DeclaredMenuText(Declared)));
  for (int32_t c = -1; c < kCompanyColourCount; ++c)
    mnuCompanyColour[static_cast<size_t>(c + 1)]->setChecked(View.Company == c);
  mnuCompany->setEnabled(Maps.Found);
  mnuCompany->menuAction()->setToolTip(
      Maps.Found ? QString::fromStdString("Recolour maps from " + Maps.From)
                 : QStringLiteral("No company colour maps: the file holds none and no base set "
                                  "with them is installed"));
  for (int32_t c = -1; c < kCompanyColourCount; ++c)
    mnuCompany2Colour[static_cast<size_t>(c + 1)]->setChecked(View.Company2 == c);
  mnuCompany2->setEnabled(Maps.TwoFound);
  const QString tip2 =
      Maps.TwoFound ? QString::fromStdString("Two-colour maps from " + Maps.TwoFrom +
                                             "; map first + 16 x second draws the pair")
                    : QStringLiteral(
                          "No two-company-colour maps: neither the file nor an installed base "
                          "set brings them (Action 05 type 0A)");
  mnuCompany2->menuAction()->setToolTip(tip2);
  mnuCompany2->menuAction()->setStatusTip(tip2);
  mnuTransparent->setChecked(View.Transparent);
  mnuAlignOrigin->setChecked(View.Origin);
}

}  // namespace vossel
