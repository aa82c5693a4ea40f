// What a command prints on standard output: plain text by default, one JSON document with --json.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <QJsonObject>

namespace vossel {

// The keys that name a sprite in every JSON document: "sprite", its number as the CLI counts it
// (from 1), and "nfo", its number in an NFO listing (from 0). `index` counts from 0.
QJsonObject SpriteKeys(int32_t index);
void AddSpriteKeys(QJsonObject& object, int32_t index);

// Writes `document` indented, with a line end, on standard output; then as FinishOutput.
int PrintJson(const QJsonObject& document);
// The same, giving `status` when it is worse than a failed write.
int PrintJson(const QJsonObject& document, int status);

// Flushes standard output: kExitOk, or kExitFailure after "vossel-cli: cannot write to standard
// output: <reason>" when anything written to it was lost (a full disk, a closed pipe).
int FinishOutput();
// The worse of a command's status and FinishOutput's.
int FinishOutput(int status);

// A PNG written whole as the file `name` or not at all, or on standard output for "-"; false after
// saying why.
bool DeliverPng(const std::string& name, const std::vector<uint8_t>& png);

}  // namespace vossel
