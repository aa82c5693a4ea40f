// frmMain's handlers: start-up, layout, shut-down, the load's window steps, the browser and the
// file commands.
#include "frmMain.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include <QCloseEvent>
#include <QLabel>

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
  Store.SpriteData.clear();
  Store.SpriteTable = {};
  CloseVersion2();
}

void frmMain::CloseVersion2() {
  Version2 = false;
  FileData = {};
  V2 = GrfV2Index{};
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
  if (Version2) return DrawV2Sprite(Index);
  // A version-1 table never holds more than 32,767 records.
  if (Index < 0 || Index > INT16_MAX) return false;
  if (!::DrawSprite(picSprite->Image(), Store, static_cast<int16_t>(Index), Palette,
                    Left(scrSprite), ScaleHeight(picSprite), ColourOfBgr(picSprite->BackColor()),
                    Magnification))
    return false;
  picSprite->Refresh();
  return true;
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
  if (FileName.empty()) return;
  int32_t start = GetTickCount();
  SetCaption(this, "Loading GRF file to memory...");
  DoEvents();

  FileReadResult file = ReadWholeFile(FileName);
  if (!file.Ok) {
    SetCaption(this, ReadFailureText(file.ErrorNumber, file.Description, FileName));
    return;
  }
  const auto length = static_cast<int32_t>(file.Bytes.size());
  if (length < kMinFileSize) {
    MsgBox(kMsgTooSmall, "Error", MsgBoxIcon::Exclamation);
    return;
  }
  if (IsGrfV2(file.Bytes.data(), file.Bytes.size())) {
    LoadGRFV2(std::move(file.Bytes), start);
    return;
  }
  setEnabled(false);
  // A version-1 file replaces the version-2 file that was open, if any.
  CloseVersion2();

  SetCaption(this, "Getting number of sprites...");
  DoEvents();
  const int16_t counted = CountSprites(file.Bytes.data(), length, ShowMessage);

  SetCaption(this, "Reserving memory (and unloading previous data if any)...");
  DoEvents();
  ReserveStore(Store, counted);
  AddMessage(PreparedMessage(GetTickCount() - start));

  start = GetTickCount();
  SetCaption(this, "Processing sprites...");
  DoEvents();
  std::vector<uint8_t> rowBuffer(kRowBufferSize);
  const DecodeTotals totals =
      DecodeSprites(file.Bytes.data(), length, Store, rowBuffer.data(), ShowMessage);
  AddMessage(LoadedMessage(totals.Count, GetTickCount() - start));

  SetCaption(lblStatus, StatusText(FileName, totals.CompressedTotal, totals.DecodedTotal, length));
  ChosenZoom = -1;
  ChosenDepth = 0;

  scrSprite->SetMax(totals.Count - 1);
  scrSprite_Change();
  DoEvents();

  file.Bytes = {};
  CutStore(Store, totals.WritePosition);

  lvwSprite->Clear();
  lvwSprite->setVisible(false);
  const auto rows = static_cast<int32_t>(Store.SpriteTable.size());
  for (int32_t i = 1; i <= rows; ++i)
    AddSpriteRow(SpriteRow(i - 1, Store.SpriteTable[static_cast<size_t>(i - 1)]));
  lvwSprite->setVisible(true);

  AddMessage(FileLoadedMessage(FileName));
  Li->SetListIndex(0);
  setEnabled(true);
}

void frmMain::SaveGRF() {}

void frmMain::scrSprite_Change() {
  const int32_t Value = scrSprite->Value();
  Offer = PictureOffer{};
  const size_t count = Version2 ? V2.Sprites.size() : Store.SpriteTable.size();
  if (Value < 0 || static_cast<size_t>(Value) >= count) {
    // A file without sprites: a blank picture, no facts, the caption of a window with no file.
    picSprite->SetBackColor(picSprite->BackColor());
    picSprite->Refresh();
    SetCaption(this, kFormCaption);
    for (QLabel* label : {lblFlags, lblSize, lblCompressed, lblOffset}) SetCaption(label, "-");
    UpdateViewItems();
    return;
  }
  if (Version2) {
    ShowV2Sprite(Value);
    UpdateViewItems();
    return;
  }
  DrawSprite(Value);
  const SpriteRecord& r = Store.SpriteTable[static_cast<size_t>(Value)];
  // A version-1 sprite has one picture: normal zoom, 8 bits a pixel.
  if (r.Flags != kActionFlags) {
    Offer.Zooms[kZoomNormal] = true;
    Offer.Depth8 = true;
    Offer.Zoom = kZoomNormal;
    Offer.Depth = 8;
  }
  UpdateViewItems();
  SetCaption(this, ViewingCaption(Value, r));
  SetCaption(lblFlags, FlagsText(r));
  SetCaption(lblSize, std::to_string(r.Size));
  SetCaption(lblCompressed, std::to_string(r.CompressedSize));
  SetCaption(lblOffset, OffsetText(r));
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
  ChunkViewer->ShowModal();
}
