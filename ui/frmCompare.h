// frmCompare: what changed between the open file (A) and another one (B). A non-modal window
// beside the main one: the two files, the list of differences in the words of `vossel-cli diff
// --pixels`, and for a sprite difference the picture from A, the one from B and B with the
// changed pixels marked in red. A click hands the sprite to Choose. It compares anew on every load
// of A while it is shown; B stays as it was read.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include <QImage>
#include <QWidget>

#include "compare.h"
#include "look.h"

class QLabel;
class QTreeWidget;

namespace vossel {

inline constexpr const char kCompareCaption[] = "Vossel - Compare";
inline constexpr const char kCompareTitle[] = "Compare with a GRF file...";

class frmCompare : public QWidget {
 public:
  explicit frmCompare(QWidget* owner = nullptr);
  ~frmCompare() override;

  // Reads B. False, with the reason in the summary, when it cannot be opened.
  bool SetOther(const std::string& path);
  bool HasOther() const { return other_ != nullptr; }
  // A was loaded: compared with B and listed.
  void Attach(const GrfFile& file, const FileReading& reading, const Look& look);
  // A is about to change or close: the window empties.
  void Detach();
  bool Attached() const { return file_ != nullptr; }
  const GrfComparison& Comparison() const { return comparison_; }
  // Called with the sprite (from 0) of the difference the user picks, where A has it.
  std::function<void(int32_t)> Choose;

  // Controls, by their names.
  QLabel* lblFiles;
  QLabel* lblSummary;
  QTreeWidget* tvwDifferences;
  QLabel* lblOld;
  QLabel* lblNew;
  QLabel* lblMarked;
  QLabel* picOld;
  QLabel* picNew;
  QLabel* picMarked;
  // The pictures on view at their own size; null when the side has none.
  QImage OldPicture, NewPicture, MarkedPicture;

 private:
  struct Other;
  std::unique_ptr<Other> other_;
  const GrfFile* file_ = nullptr;
  const FileReading* reading_ = nullptr;
  Look look_;
  GrfComparison comparison_;
  void ShowDifference(int32_t index);
  void ClearPictures();
};

}  // namespace vossel
