// frmChunk: the chunk viewer. A second, modal window with its own file, dialog and tables; a
// scroll bar chooses a sprite and the list shows how that sprite is stored, chunk by chunk.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <QMainWindow>

#include "chunkfile.h"
#include "follow.h"

class QAction;
class QCloseEvent;
class QEventLoop;
class QLabel;
class QMenu;

namespace vossel {

class ListBox;
class PictureBox;
class ScrollBar;
class FileWatch;
class clsFileDialog;

// The window's title at every showing.
inline constexpr const char kChunkCaption[] = "Vossel - Chunk Viewer";

class frmChunk : public QMainWindow {
  Q_OBJECT
  Q_PROPERTY(int hWnd READ hWnd)

 public:
  frmChunk();
  ~frmChunk() override;

  int hWnd();

  // Builds the controls anew with their design values, shows the window application-modal and
  // returns when it has closed. The object lives on: FileDialog and FileName carry over.
  void ShowModal();
  // The controls, the menu and the title as they are designed, replacing any earlier ones.
  void BuildForm();

  std::string FileName;
  // The viewer's own reading of its own copy of the file, whatever the main window has open. Each
  // sprite lists the chunks of its default picture; a version-1 file's tables are the scan's.
  ChunkFile Viewed;
  std::unique_ptr<clsFileDialog> FileDialog;
  // The highest sprite index the last usable scan offered: Count - 1, so -1 when it found none.
  // The scroll bar cannot go below 0; positions above this list nothing.
  int32_t SpriteMax = -1;
  // Whether the viewer scans its file again by itself once it has been rewritten; the main
  // window's choice, handed over at each showing.
  bool Follow = true;
  FileWatch* Follower = nullptr;

  // Controls, by their names.
  QLabel* lblFilename = nullptr;
  PictureBox* Pi = nullptr;
  ListBox* Li = nullptr;
  ScrollBar* scrSprite = nullptr;
  QLabel* lblSprite = nullptr;

  QMenu* mnuFile = nullptr;
  QAction* mnuOpen = nullptr;
  QAction* mnuLine1 = nullptr;
  QAction* mnuClose = nullptr;

  void ScanGRF();
  // Scans the followed file again, keeping the sprite position where the file still has it.
  void Rescan();
  void Form_Unload();
  void scrSprite_Change();
  void scrSprite_Scroll();
  void mnuOpen_Click();
  void mnuClose_Click();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  // Raised by every fill that starts, by Form_Unload and by BuildForm: a fill that sees it move
  // while events run has been overtaken and leaves the list to whoever moved it.
  uint32_t fillNumber_ = 0;
  QEventLoop* modalLoop_ = nullptr;
  bool scanning_ = false;  // ScanGRF runs: a rescan waits for its end
  SpritePlace place_;
};

}  // namespace vossel
