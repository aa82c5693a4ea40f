// frmMain's handlers: start-up, layout, shut-down, the load's window steps, the browser and the
// file commands.
#include "frmMain.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include <QCloseEvent>
#include <QLabel>
#include <QScopeGuard>

#include "controls.h"
#include "fileio.h"
#include "grfdialog.h"
#include "line.h"
#include "listbox.h"
#include "listview.h"
#include "msgbox.h"
#include "picturebox.h"
#include "process.h"
#include "registry.h"
#include "renderer.h"
#include "scrollbar.h"
#include "text.h"

namespace vossel {

namespace {

constexpr const char kGameKey[] = "SOFTWARE\\FISH Technology Group\\Transport Tycoon Deluxe";

void ShowMessage(const std::string& text) {
  MsgBox(text);
}

}  // namespace

bool frmMain::Form_Load() {
  const std::string programFolder = AppPath.empty() ? ProgramFolder() : AppPath;
  const std::string gameFolder = GetRegString(HKEY_LOCAL_MACHINE, kGameKey, "HDPath", "");
  // The game's folder is a Windows one, reached through Wine's drive links. One that cannot be
  // entered leaves the current directory as it was.
  if (!gameFolder.empty())
    ChDir(WineFolderToLinux(gameFolder));
  else
    ChDir(programFolder);
  PaletteFile = JoinPath(programFolder, kPaletteFileName);
  if (LoadPalette(PaletteFile, Palette) == 0) {
    MsgBox(kMsgBadPalette, "Error", MsgBoxIcon::Information);
    Form_Unload();
    return false;
  }
  return true;
}

void frmMain::Form_Resize() {
  const int32_t W = ScaleWidth(Client);
  const int32_t H = ScaleHeight(Client);
  Hlin->SetX1(W);
  const auto T = static_cast<int16_t>(Hlin->Y1() + 15);
  // A move with a negative width or height fails and is skipped.
  Move(BGpanel, 0, T, Width(BGpanel), H - T);
  Move(picSprite, Width(BGpanel), T, W - Width(BGpanel), H - T);
}

void frmMain::BGpanel_Resize() {
  Move(lvwSprite, Left(lvwSprite), Top(lvwSprite), Width(lvwSprite),
       ScaleHeight(BGpanel) - Top(lvwSprite));
}

void frmMain::picSprite_Resize() {
  Move(scrSprite, ScaleWidth(picSprite) - Width(scrSprite), 0, Width(scrSprite),
       ScaleHeight(picSprite));
  DrawSprite(scrSprite->Value());  // with no record nothing is drawn, and nothing is said
}

void frmMain::Form_Unload() {
  EraseStores();
}

void frmMain::EraseStores() {
  DetachSideWindows();
  CloseGrfFile(File);
  Reading = FileReading{};
  ReadingDone = false;
  ItemsDone = false;
}

void frmMain::closeEvent(QCloseEvent* event) {
  // A disabled window is in the middle of a load and takes no input, the close button included.
  if (!isEnabled()) {
    event->ignore();
    return;
  }
  Form_Unload();
  event->accept();
}

bool frmMain::DrawSprite(int32_t Index) {
  if (Index < 0 || Index >= SpriteCount(File)) return false;
  const int32_t shown = ShownAlternative(Index);
  SpritePicture picture;
  const GrfResult result = PictureOf(File, Index, shown, picture);
  // A picture that cannot be decoded leaves the area blank, and says why once.
  if (result != GrfResult::Ok && reported_.insert({Index, shown}).second) {
    AddMessage("Sprite " + std::to_string(int64_t{Index} + 1) + ": " +
               PictureProblem(File, Index, shown, result));
    Li->SetListIndex(0);
  }
  const int32_t x = picture.XOffset, y = picture.YOffset;
  const Look& look = LookOfView();
  const QImage image = LookPixels(look, std::move(picture));
  PictureOptions options;
  options.TransparentIndex0 = look.Transparent;
  options.AlignToOrigin = View.Origin;
  options.OriginShift = View.Pan;
  PaintPicture(picSprite->Image(), image, x, y, Left(scrSprite), ScaleHeight(picSprite),
               ColourOfBgr(picSprite->BackColor()), View.Magnification, options);
  picSprite->Refresh();
  return true;
}

int32_t frmMain::ShownAlternative(int32_t sprite) const {
  return ChosenAlternative(File, sprite, View.Zoom, View.Depth);
}

void frmMain::AddMessage(const std::string& text) {
  Li->AddItem(text, 0);
}

void frmMain::AddSpriteRow(SpriteRowTexts row) {
  lvwSprite->AddItem(std::move(row.Key),
                     {std::move(row.Number), std::move(row.Width), std::move(row.Height),
                      std::move(row.Size), std::move(row.Flags)});
}

void frmMain::LoadGRF() {
  if (FileName.empty() || loading_) return;
  loading_ = true;
  const auto ended = qScopeGuard([this] { loading_ = false; });
  int32_t start = GetTickCount();
  SetCaption(this, "Loading GRF file to memory...");
  DoEvents();

  GrfLoad load;
  const OpenOutcome read = ReadForLoad(FileName, load);
  if (read.End == OpenEnd::ReadFailure) {
    SetCaption(this, read.Message);
    return;
  }
  if (read.End == OpenEnd::TooSmall) {
    MsgBox(read.Message, "Error", MsgBoxIcon::Exclamation);
    return;
  }
  DetachSideWindows();  // the file they show is replaced from here on
  setEnabled(false);
  StartMapsSearch();

  SetCaption(this, "Getting number of sprites...");
  DoEvents();
  // A record that cannot be taken in is a message box; a version-2 file's problems are lines of
  // their own, and the rest of the file stays browsable.
  CountSprites(load, File, ShowMessage, [this](const std::string& m) { AddMessage(m); });

  SetCaption(this, "Reserving memory (and unloading previous data if any)...");
  DoEvents();
  ReserveSprites(load, File);
  ReadingDone = false;
  ItemsDone = false;
  AddMessage(PreparedMessage(GetTickCount() - start));

  start = GetTickCount();
  SetCaption(this, "Processing sprites...");
  DoEvents();
  DecodeSprites(load, File, ShowMessage);
  reported_.clear();
  TakeFileColours();
  const int32_t count = SpriteCount(File);
  AddMessage(LoadedMessage(count, GetTickCount() - start));

  SetCaption(lblStatus,
             StatusText(FileName, File.CompressedTotal, File.DecodedTotal, File.FileLength));
  if (!keepView_) {
    View.Zoom = -1;
    View.Depth = 0;
  }

  scrSprite->SetMax(count - 1);
  scrSprite_Change();
  DoEvents();

  FinishLoad(load, File);

  lvwSprite->Clear();
  lvwSprite->setVisible(false);
  for (int32_t i = 1; i <= count; ++i) {
    const SpriteFacts f = FactsOf(File, i - 1, DefaultAlternative(File, i - 1));
    AddSpriteRow(SpriteRow(i - 1, f.Width, f.Height, f.Size, f.Flags));
  }
  lvwSprite->setVisible(true);

  AddMessage(FileLoadedMessage(FileName));
  Li->SetListIndex(0);
  AttachSideWindows();
  setEnabled(true);
  Loaded();
}

void frmMain::SaveGRF() {}

void frmMain::scrSprite_Change() {
  // A new sprite starts where the design places it, unless the views are kept in register.
  if (scrSprite->Value() != View.Sprite && !View.Origin) View.Pan = QPoint();
  View.Sprite = scrSprite->Value();
  ShowView();
}

void frmMain::ShowView() {
  const int32_t v = View.Sprite;
  if (SpriteSheet) SpriteSheet->Follow(v, LookOfView());
  if (ItemsWindow) ItemsWindow->Follow(LookOfView());
  Offer = PictureOffer{};
  if (v < 0 || v >= SpriteCount(File)) {
    // A file without sprites: a blank picture, no facts, the caption of a window with no file.
    picSprite->SetBackColor(picSprite->BackColor());
    picSprite->Refresh();
    SetCaption(this, kFormCaption);
    for (QLabel* label : {lblFlags, lblSize, lblCompressed, lblOffset}) SetCaption(label, "-");
    UpdateViewItems();
    UpdateDetails();
    return;
  }
  DrawSprite(v);
  const int32_t shown = ShownAlternative(v);
  for (int32_t k = 0; k < AlternativeCount(File, v); ++k) {
    const AlternativeInfo a = AlternativeOf(File, v, k);
    if (a.Data) continue;
    Offer.Zooms[a.Zoom] = true;
    (a.Depth == 32 ? Offer.Depth32 : Offer.Depth8) = true;
    if (k != shown) continue;
    Offer.Zoom = a.Zoom;
    Offer.Depth = a.Depth;
    Offer.Mask = a.Mask;
  }
  UpdateViewItems();
  const SpriteFacts f = FactsOf(File, v, shown);
  SetCaption(this, ViewingCaption(v, f.Width, f.Height));
  SetCaption(lblFlags, FlagsText(f.Flags));
  SetCaption(lblSize, std::to_string(f.Size));
  SetCaption(lblCompressed, std::to_string(f.Compressed));
  SetCaption(lblOffset, OffsetText(f.XOffset, f.YOffset));
  UpdateDetails();
}

void frmMain::scrSprite_Scroll() {
  scrSprite_Change();
}

void frmMain::lvwSprite_ItemClick(const ListItem& Item) {
  // The key is "k" and the sprite's index.
  int32_t index = 0;
  const char* first = Item.Key.data() + std::min<size_t>(1, Item.Key.size());
  const char* last = Item.Key.data() + Item.Key.size();
  const auto [end, error] = std::from_chars(first, last, index);
  if (error != std::errc() || end != last || index < 0) return;
  scrSprite->SetValue(index);
}

void frmMain::lvwSprite_ColumnClick(const ColumnHeader& ColumnHeader) {
  int32_t order = 0;
  if (lvwSprite->SortKey == ColumnHeader.Index - 1) {
    order = lvwSprite->SortOrder == 1 ? 0 : 1;
  } else {
    lvwSprite->SortKey = static_cast<int16_t>(ColumnHeader.Index - 1);
    order = 0;
  }
  lvwSprite->SortOrder = order;
  lvwSprite->SetSorted(true);
  lvwSprite->SetSorted(false);
}

void frmMain::mnuNew_Click() {
  picSprite->SetBackColor(picSprite->BackColor());
  // Setting the maximum pulls the value to 0 without a change event, so sprite 0 is not shown
  // here and nothing runs on the stores once they are erased below.
  scrSprite->SetMax(0);
  for (QLabel* label : {lblFlags, lblOffset, lblSize, lblCompressed}) SetCaption(label, "-");
  Offer = PictureOffer{};
  UpdateViewItems();
  SetCaption(lblStatus, "No file loaded");
  EraseStores();
  lvwSprite->Clear();
  Li->AddItem("*** File closed ***", 0);
  Li->SetListIndex(0);
}

void frmMain::PrepareFileDialog() {
  if (!FileDialog) FileDialog = std::make_unique<clsFileDialog>();
  FileDialog->InitialDirectory(CurDir());
  FileDialog->ObjectOwner(this);
}

void frmMain::mnuOpen_Click() {
  PrepareFileDialog();
  if (AskForGrfToOpen(*FileDialog, FileName)) LoadGRF();
}

// Unreachable while mnuSaveAs stays disabled; nothing is written.
void frmMain::mnuSaveAs_Click() {
  PrepareFileDialog();
  FileDialog->WindowTitle("Save a GRF file as...");
  FileDialog->Filter(kGrfFilter);
  if (FileDialog->FileSave(FileName)) SaveGRF();
}

void frmMain::mnuQuit_Click() {
  close();
}

void frmMain::mnuChunk_Click() {
  if (!ChunkViewer) ChunkViewer = std::make_unique<frmChunk>();
  ChunkViewer->Follow = View.Follow;
  ChunkViewer->ShowModal();
}

}  // namespace vossel
