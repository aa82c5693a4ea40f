#include <algorithm>
#include <cstdio>

#include <QJsonArray>
#include <QJsonObject>

#include "chunkfile.h"
#include "chunks.h"
#include "commands.h"
#include "fileio.h"
#include "output.h"
#include "text.h"

namespace vossel {

namespace {

const char kChunksUsage[] =
    "Usage: vossel-cli chunks FILE N [--zoom LEVEL] [--depth 8|32] [--json]\n";

QJsonObject ChunkJson(const ChunkRecord& chunk) {
  QJsonObject object{{"position", static_cast<qint64>(chunk.Position)},
                     {"length", chunk.Length},
                     {"text", QString::fromStdString(ChunkText(chunk))}};
  switch (chunk.Kind) {
    case ChunkKind::Action:
      object.insert("kind", "action");
      break;
    case ChunkKind::Offset:
      object.insert("kind", "offset");
      object.insert("distance", chunk.Distance);
      object.insert("from", static_cast<qint64>(chunk.Decoded) - chunk.Distance);
      break;
    case ChunkKind::Data:
      object.insert("kind", "data");
      break;
  }
  return object;
}

}  // namespace

// vossel-cli chunks FILE N: the lines the chunk viewer lists for sprite N, each as its item value,
// a tab and its text. A version-2 sprite lists the stream of its chosen alternative.
int CmdChunks(const std::vector<std::string>& args) {
  const CommandArgs parsed = ParseCommand(args, 2, {"zoom", "depth"}, {"json"});
  AlternativeWish wish;
  std::string why;
  if (parsed.Error.empty() && !IsSpriteNumberText(args[1]))
    why = "'" + args[1] + "' is not a sprite number";
  if (parsed.Error.empty() && why.empty()) ParseWish(parsed, wish, why);
  if (!parsed.TooFew && why.empty()) why = parsed.Error;
  if (!parsed.Error.empty() || !why.empty()) {
    if (!why.empty()) std::fprintf(stderr, "vossel-cli: %s\n", why.c_str());
    std::fputs(kChunksUsage, stderr);
    return kExitUsage;
  }

  ChunkFile viewed;
  const ScanOutcome outcome = ScanGrfFile(args[0], viewed);
  const GrfFile& file = viewed.File;
  switch (outcome.End) {
    case ScanEnd::ReadFailure:
      std::fprintf(stderr, "vossel-cli: %s\n", outcome.Message.c_str());
      return kExitFailure;
    case ScanEnd::TooSmall:
      FileError(args[0], outcome.Message);
      return kExitFailure;
    case ScanEnd::InvalidStream:
    case ScanEnd::Complete:
      break;
  }
  // The problems the window shows in message boxes; the sprites before them stay listable.
  const int64_t shown = std::min<int64_t>(file.ProblemCount, kProblemMessages);
  for (int64_t i = 0; i < shown; ++i)
    FileError(args[0], ProblemText(file.Problems[static_cast<size_t>(i)]));
  if (file.ProblemCount > shown) FileError(args[0], MoreProblemsText(file.ProblemCount - shown));
  int32_t index = 0, alternative = -1;
  if (!ParseSpriteNumber(args[0], args[1], SpriteCount(file), index) ||
      !PickAlternative(file, index, wish, alternative))
    return kExitFailure;
  const bool json = parsed.Values.count("json") > 0;
  QJsonArray chunks;
  ChunkCursor cursor = StartChunks(viewed, index, alternative);
  for (ChunkRecord chunk; NextChunk(viewed, cursor, chunk);) {
    if (json)
      chunks.append(ChunkJson(chunk));
    else
      std::printf("%lld\t%s\n", static_cast<long long>(chunk.Position), ChunkText(chunk).c_str());
  }
  if (cursor.Unreadable) {
    FileError(args[0], UnreadableText(file));
    return FinishOutput(kExitFailure);
  }
  if (!json) return FinishOutput(LoadStatus(file));
  QJsonObject document = SpriteKeys(index);
  document.insert("file", QString::fromStdString(file.Path));
  if (alternative >= 0 && file.HasAlternatives)
    document.insert("alternative", QString::fromStdString(
                                       AlternativeText(AlternativeOf(file, index, alternative))));
  document.insert("count", static_cast<qint64>(chunks.size()));
  document.insert("chunks", chunks);
  return PrintJson(document, LoadStatus(file));
}

}  // namespace vossel
