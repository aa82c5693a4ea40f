// frmMain: the main window. Banner on top, the panel with the sprite's facts, the messages and the
// sprite list on the left, the picture area with its scroll bar on the right.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <QFuture>
#include <QMainWindow>

#include "colours.h"
#include "companymaps.h"
#include "filedialog.h"
#include "follow.h"
#include "frmChunk.h"
#include "frmCompare.h"
#include "frmDetails.h"
#include "frmItems.h"
#include "frmProblems.h"
#include "frmSheet.h"
#include "grffile.h"
#include "look.h"
#include "palette.h"
#include "text.h"

class QAction;
class QCloseEvent;
class QDragEnterEvent;
class QDropEvent;
class QGroupBox;
class QLabel;
class QMenu;

namespace vossel {

class FileWatch;
class LineControl;
class ListBox;
class ListView;
class PictureBox;
class ScrollBar;
struct ColumnHeader;
struct ListItem;

// What the sprite on view offers the View menu: the zoom levels and colour depths of its
// pictures, and those of the picture shown (Zoom -1 when none is).
struct PictureOffer {
  std::array<bool, kZoomLevels> Zooms{};
  bool Depth8 = false;
  bool Depth32 = false;
  int32_t Zoom = -1;
  int32_t Depth = 0;
  bool Mask = false;
};

// The caption of the window until a sprite is shown.
inline constexpr const char kFormCaption[] = "Vossel (GRF loader engine)";

class frmMain : public QMainWindow {
  Q_OBJECT
  Q_PROPERTY(int hWnd READ hWnd)

 public:
  frmMain();
  ~frmMain() override;

  int hWnd();

  // The opened file, the palette and the file's name. A version-1 file's sprite store,
  // SpriteTable and SpriteData, lives in the opened file and is the window's store.
  GrfFile File;
  PaletteBuffer Palette{};
  std::string PaletteFile;
  std::string FileName;
  // The folder of the program's own file; ProgramFolder() while empty.
  std::string AppPath;
  // Made by the first Open or Save As and kept, so that what one dialog leaves the next one sees.
  std::unique_ptr<clsFileDialog> FileDialog;
  // The chunk viewer, made by its first showing and kept until the program ends.
  std::unique_ptr<frmChunk> ChunkViewer;
  // What the open file says about itself, read when the Details window first needs it.
  FileReading Reading;
  bool ReadingDone = false;
  frmDetails* Details = nullptr;
  // The Sprite Sheet, made by its first showing and kept; it follows the file and the view.
  std::unique_ptr<frmSheet> SpriteSheet;
  // What the file makes, read when the Items or Details window first needs it, and the items
  // each sprite belongs to.
  GrfItems Items;
  std::vector<std::vector<int32_t>> ItemsOfSprite;
  bool ItemsDone = false;
  std::unique_ptr<frmItems> ItemsWindow;
  std::unique_ptr<frmProblems> ProblemsWindow;
  std::unique_ptr<frmCompare> CompareWindow;
  // What is on view. Menu handlers change it and call ShowView; nothing reads a check mark back.
  struct ViewState {
    int32_t Sprite = -1;
    // The zoom level (-1: none) and colour depth (0: none) the user chose, kept while browsing;
    // a sprite without that picture shows its default one. Open starts from the defaults; a
    // reload keeps them.
    int32_t Zoom = -1;
    int32_t Depth = 0;
    // How many screen pixels a sprite pixel takes across and down, 1 to 16. It lasts across
    // sprites, loads and New.
    int32_t Magnification = 1;
    bool Mask = false;  // a 32-bit picture's mask layer instead of its colours
    // The palette: until the user chooses, the one the file is drawn in by default.
    PaletteChoiceKind Palette = PaletteChoiceKind::Windows;
    bool PaletteChosen = false;
    int32_t Company = -1;   // a company colour, or -1 for none
    int32_t Company2 = -1;  // the second company colour, likewise
    bool Transparent = false;
    bool Origin = false;
    QPoint Pan;  // how far the picture (or the origin) has been dragged
    // Read the file again by itself once it has been rewritten.
    bool Follow = true;
  };
  const ViewState& Viewing() const { return View; }

  // Controls, by their names.
  PictureBox* Client;  // the window's client area: background colour and banner
  PictureBox* Grid;
  PictureBox* BGpanel;
  ListView* lvwSprite;
  ListBox* Li;
  QGroupBox* Frame;
  QLabel* Label2;
  QLabel* lblFlags;
  QLabel* Label5;
  QLabel* lblOffset;
  QLabel* Label3;
  QLabel* lblSize;
  QLabel* Label4;
  QLabel* lblCompressed;
  QLabel* lblT;
  PictureBox* picSprite;
  ScrollBar* scrSprite;
  LineControl* Hlin;
  QLabel* lblStatus;

  QMenu* mnuFile;
  QAction* mnuNew;
  QAction* mnuOpen;
  QAction* mnuCompare;
  QAction* mnuReload;
  QAction* mnuSave;
  QAction* mnuSaveAs;
  QAction* mnuLine1;
  QAction* mnuQuit;
  QMenu* mnuView;
  QAction* mnuViewGrid;
  // The magnifier, and the choice of a sprite's alternative.
  QAction* mnuLine2;
  QAction* mnuZoomIn;
  QAction* mnuZoomOut;
  QAction* mnuActualSize;
  QAction* mnuLine3;
  QMenu* mnuZoomLevel;
  std::array<QAction*, kZoomLevels> mnuLevel;  // by the zoom byte: normal, in 4x, in 2x, out ...
  QMenu* mnuColourDepth;
  QAction* mnuDepth8;
  QAction* mnuDepth32;
  QAction* mnuMaskLayer;
  QAction* mnuLine4;
  QMenu* mnuPalette;
  QAction* mnuPaletteWindows;
  QAction* mnuPaletteDos;
  QAction* mnuPaletteDeclared;
  QMenu* mnuCompany;
  std::array<QAction*, kCompanyColourCount + 1> mnuCompanyColour;  // None, then the colours
  QMenu* mnuCompany2;
  std::array<QAction*, kCompanyColourCount + 1> mnuCompany2Colour;  // likewise
  QAction* mnuTransparent;
  QAction* mnuAlignOrigin;
  QAction* mnuLine5;
  QAction* mnuDetails;
  QAction* mnuFollow;
  QAction* mnuSheet;
  QAction* mnuItems;
  QAction* mnuProblems;
  QMenu* mnuTools;
  QAction* mnuChunk;
  QMenu* mnuHelp;
  QAction* mnuAbout;
  // Watches the loaded file while View.Follow holds.
  FileWatch* Follower;

  // Runs once before the window is first shown. False when the palette was refused: the window
  // has then been unloaded and must not be shown.
  bool Form_Load();
  void Form_Resize();
  void Form_Unload();
  void BGpanel_Resize();
  void picSprite_Resize();

  // False, with the picture as it was, when SpriteTable holds no record at Index.
  bool DrawSprite(int32_t Index);
  void LoadGRF();
  void SaveGRF();

  void scrSprite_Change();
  void scrSprite_Scroll();
  void lvwSprite_ItemClick(const ListItem& Item);
  void lvwSprite_ColumnClick(const ColumnHeader& ColumnHeader);

  void mnuNew_Click();
  void mnuOpen_Click();
  void mnuReload_Click();
  void mnuSaveAs_Click();
  void mnuQuit_Click();
  void mnuChunk_Click();
  void mnuZoomIn_Click();
  void mnuZoomOut_Click();
  void mnuActualSize_Click();
  void mnuLevel_Click(int32_t zoom);
  void mnuDepth_Click(int32_t bits);
  void mnuMaskLayer_Click();
  void mnuDetails_Click();
  void mnuPalette_Click(PaletteChoiceKind kind);
  void mnuCompany_Click(int32_t colour);
  void mnuCompany2_Click(int32_t colour);
  void mnuTransparent_Click();
  void mnuAlignOrigin_Click();
  void mnuFollow_Click();
  void mnuSheet_Click();
  void mnuAbout_Click();

  // Loads `path` as Open does once its dialog has given a name: from the command line and from a
  // file dropped on the window.
  void OpenFile(const std::string& path);
  // Reads the file on view again where the user was, keeping View where it still applies. Does
  // nothing with no file, or while a load runs.
  void Reload();

 signals:
  // After every load that has replaced the file on view, a reload included: whatever shows its
  // sprites fills itself anew from File.
  void FileLoaded();

 protected:
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void BuildControls();
  void BuildMenus();
  // The View menu's items behind Grid, with their handlers.
  void BuildViewItems();
  // File > Reload, View > Follow File Changes and the watcher behind them.
  void BuildFollowItems();
  // The end of a load that has replaced the file: following and FileLoaded.
  void Loaded();
  void FileGone();
  bool loading_ = false;   // LoadGRF runs: no reload may start inside it
  bool keepView_ = false;  // the load running is a reload
  SpritePlace place_;
  // The enabled and checked states of the View items for the sprite on view.
  void UpdateViewItems();
  void SetMagnification(int32_t magnification);
  // Draws View's sprite and sets the caption, the labels and the View items from View.
  void ShowView();
  // The Details window follows the sprite on view, while it is shown.
  void UpdateDetails();
  // Reads what the open file says about itself, once a load.
  void ReadFileOnce();
  // Starts the search of the installed base sets for company colour maps at the first load.
  void StartMapsSearch();
  // After a load: the file's declared palette and its company colour maps, waiting for the
  // search when the file holds none.
  void TakeFileColours();
  // Dragging pans, the wheel steps through sprites, Ctrl+wheel magnifies.
  bool eventFilter(QObject* watched, QEvent* event) override;
  PaletteDeclaration Declared;
  // The company colour maps, of one colour and of two: the file's own, else what the search of
  // the installed base sets found. The search runs once a window, off its thread; later loads take
  // its result at once.
  FoundMaps Maps;
  QFuture<FoundMaps> mapsSearch_;
  // How the view draws, resolved again when View's choices change. The palette in use is also
  // in Palette; the palette file's when the chosen one cannot be read.
  Look Looking;
  LookChoices lookChoices_;
  bool lookStale_ = true;
  QPoint dragFrom_;
  bool dragging_ = false;
  // The alternative of a sprite to show: the chosen one where it has it, else its default.
  int32_t ShownAlternative(int32_t sprite) const;
  // The Sprite Sheet's part: what the view's choices make of a picture, and the file's coming
  // and going.
  const Look& LookOfView();
  void AttachSheet();
  // The side windows (Sprite Sheet, Items, Problems, Compare) hold the file only while on screen: a
  // load gives it to those shown, and showing one gives it the file it lacks. Each is made by its
  // first showing and kept; a sprite it picks is shown through the scroll bar.
  template <class Window>
  void ShowSideWindow(std::unique_ptr<Window>& window, void (frmMain::*attach)());
  template <class Window>
  void MakeSideWindow(std::unique_ptr<Window>& window);
  template <class Window>
  bool WantsFile(const std::unique_ptr<Window>& window) const;
  void AttachSideWindows();
  void DetachSideWindows();
  void ShowPicked(int32_t sprite);
  // The Items window's part (frmMain_items.cpp).
  void BuildItemsItem();
  // Puts a window's item into the View menu right after `before` (at the end without it).
  void AddViewItemAfter(QAction* before, QAction* item);
  void mnuItems_Click();
  void ReadItemsOnce();
  void AttachItems();
  // The Problems window's part (frmMain_problems.cpp).
  void BuildProblemsItem();
  void mnuProblems_Click();
  void AttachProblems();
  // The Compare window's part (frmMain_compare.cpp).
  void BuildCompareItem();
  void mnuCompare_Click();
  void AttachCompare();
  // A sprite's details, with the items it belongs to.
  FactLines DetailsWithItems(int32_t sprite);
  ViewState View;
  PictureOffer Offer;
  // Pictures (sprite, alternative) whose failure to decode has been reported, so that browsing
  // says it once.
  std::set<std::pair<int32_t, int32_t>> reported_;
  void EraseStores();
  // What Open and Save As do first: the dialog object, its folder and its owner.
  void PrepareFileDialog();
  void AddMessage(const std::string& text);
  void AddSpriteRow(SpriteRowTexts row);
};

template <class Window>
void frmMain::MakeSideWindow(std::unique_ptr<Window>& window) {
  if (window) return;
  window = std::make_unique<Window>(this);
  window->Choose = [this](int32_t sprite) { ShowPicked(sprite); };
}

template <class Window>
void frmMain::ShowSideWindow(std::unique_ptr<Window>& window, void (frmMain::*attach)()) {
  MakeSideWindow(window);
  window->show();
  window->raise();
  window->activateWindow();
  (this->*attach)();
}

template <class Window>
bool frmMain::WantsFile(const std::unique_ptr<Window>& window) const {
  return window && window->isVisible() && !window->Attached() && IsOpen(File);
}

}  // namespace vossel
