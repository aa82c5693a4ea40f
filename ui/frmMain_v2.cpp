// frmMain on a file of container version 2: the load indexes the file and keeps its bytes, the
// list shows each sprite's default picture, and a sprite's picture is decoded when it is shown.
#include <algorithm>
#include <utility>

#include <QAction>
#include <QLabel>

#include "controls.h"
#include "frmMain.h"
#include "listbox.h"
#include "listview.h"
#include "picturebox.h"
#include "process.h"
#include "renderer.h"
#include "scrollbar.h"
#include "text.h"

int32_t frmMain::ShownAlternative(const GrfV2Sprite& s) const {
  if (ChosenZoom >= 0) {
    const int32_t chosen = ChooseAlternative(V2, s, ChosenZoom, ChosenDepth);
    if (chosen >= 0) return chosen;
  }
  return s.Default;
}

void frmMain::LoadGRFV2(std::vector<uint8_t> bytes, int32_t start) {
  setEnabled(false);
  SetCaption(this, "Getting number of sprites...");
  DoEvents();
  // The previous file goes first, so that two large files are never held together. Each problem
  // of the new one is a line of its own; the rest of the file stays browsable.
  EraseStores();
  Version2 = true;
  FileData = std::move(bytes);
  IndexGrfV2(FileData.data(), FileData.size(), V2, [this](const std::string& m) { AddMessage(m); });
  reported_.assign(V2.Alternatives.size(), false);

  SetCaption(this, "Reserving memory (and unloading previous data if any)...");
  DoEvents();
  AddMessage(PreparedMessage(GetTickCount() - start));

  start = GetTickCount();
  SetCaption(this, "Processing sprites...");
  DoEvents();
  const auto count = static_cast<int32_t>(std::min<size_t>(V2.Sprites.size(), INT32_MAX));
  const GrfV2Totals totals = IndexTotals(V2);
  AddMessage(LoadedMessage(count, GetTickCount() - start));
  SetCaption(lblStatus, StatusText(FileName, totals.Compressed, totals.Decompressed,
                                   static_cast<int64_t>(FileData.size())));
  ChosenZoom = -1;
  ChosenDepth = 0;

  scrSprite->SetMax(count - 1);
  scrSprite_Change();
  DoEvents();

  lvwSprite->Clear();
  lvwSprite->setVisible(false);
  for (int32_t i = 0; i < count; ++i) {
    const GrfV2Sprite& s = V2.Sprites[static_cast<size_t>(i)];
    const GrfV2Facts f = SpriteFacts(V2, s, s.Default);
    AddSpriteRow(SpriteRow(i, f.Width, f.Height, f.Size, f.Flags));
  }
  lvwSprite->setVisible(true);

  AddMessage(FileLoadedMessage(FileName));
  Li->SetListIndex(0);
  setEnabled(true);
}

bool frmMain::DrawV2Sprite(int32_t Index) {
  if (Index < 0 || static_cast<size_t>(Index) >= V2.Sprites.size()) return false;
  const GrfV2Sprite& s = V2.Sprites[static_cast<size_t>(Index)];
  const int32_t shown = ShownAlternative(s);
  QImage picture;
  int32_t x = 0, y = 0;
  const GrfV2Alternative* a = shown >= 0 ? &V2.Alternatives[static_cast<size_t>(shown)] : nullptr;
  if (a != nullptr && a->Info != kV2Pseudo) {
    GrfV2Image image;
    const GrfV2Result result = DecodeAlternative(FileData.data(), FileData.size(), *a, image);
    // A picture that cannot be decoded leaves the area blank, and says why once.
    if (result != GrfV2Result::Ok && !reported_[static_cast<size_t>(shown)]) {
      reported_[static_cast<size_t>(shown)] = true;
      AddMessage("Sprite " + std::to_string(Index + 1) + ": " + DecodeText(result, *a));
      Li->SetListIndex(0);
    }
    const bool mask = mnuMaskLayer->isChecked() && !image.Rgba.empty() &&
                      image.Indices.size() == size_t(image.Width) * size_t(image.Height);
    picture = mask ? IndexedPicture(image.Indices.data(), image.Width, image.Height, Palette)
                   : ImageBitmap(image, Palette);
    x = image.XOffset;
    y = image.YOffset;
  } else if (a != nullptr || s.Info != kV2Reference) {
    // Data shows as an action sprite does: a strip of its bytes read as palette indices.
    const int64_t offset = a != nullptr ? a->StreamOffset : s.DataOffset;
    const int64_t size = a != nullptr ? a->StreamSize : s.DataSize;
    if (offset >= 0 && size <= static_cast<int64_t>(FileData.size()) - offset)
      picture = IndexedPicture(FileData.data() + offset, size, 1, Palette);
  }
  PaintPicture(picSprite->Image(), picture, x, y, Left(scrSprite), ScaleHeight(picSprite),
               ColourOfBgr(picSprite->BackColor()), Magnification);
  picSprite->Refresh();
  return true;
}

void frmMain::ShowV2Sprite(int32_t Index) {
  DrawSprite(Index);
  const GrfV2Sprite& s = V2.Sprites[static_cast<size_t>(Index)];
  const int32_t shown = ShownAlternative(s);
  const GrfV2Facts f = SpriteFacts(V2, s, shown);
  SetCaption(this, ViewingCaption(Index, f.Width, f.Height));
  SetCaption(lblFlags, FlagsText(f.Flags));
  SetCaption(lblSize, std::to_string(f.Size));
  SetCaption(lblCompressed, std::to_string(f.Compressed));
  SetCaption(lblOffset, OffsetText(f.XOffset, f.YOffset));

  for (int32_t i = s.FirstAlternative; i < s.FirstAlternative + s.AlternativeCount; ++i) {
    const GrfV2Alternative& a = V2.Alternatives[static_cast<size_t>(i)];
    if (a.Info == kV2Pseudo) continue;
    const int32_t depth = AlternativeDepth(a);
    Offer.Zooms[a.Zoom] = true;
    (depth == 32 ? Offer.Depth32 : Offer.Depth8) = true;
    if (i != shown) continue;
    Offer.Zoom = a.Zoom;
    Offer.Depth = depth;
    Offer.Mask = (a.Info & kV2Rgb) != 0 && (a.Info & kV2Palette) != 0;
  }
}
