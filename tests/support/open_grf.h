// A GRF file opened quietly, with its pseudo-sprites read, as the engine's tests need it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "grffile.h"

struct OpenedGrf {
  vossel::GrfFile File;
  vossel::FileReading Reading;
};

// Into `o` in place, as an opened file stays where it was opened.
inline void OpenGrf(const std::string& path, OpenedGrf& o) {
  const vossel::MessageFn quiet = [](const std::string&) {};
  EXPECT_EQ(vossel::LoadGrfFile(path, o.File, quiet, quiet).End, vossel::OpenEnd::Ok) << path;
  vossel::ReadFileActions(o.File, o.Reading);
}

inline std::unique_ptr<OpenedGrf> OpenGrf(const std::string& path) {
  auto o = std::make_unique<OpenedGrf>();
  OpenGrf(path, *o);
  return o;
}

// One of the real NewGRFs kept beside the tests.
inline std::string NewGrfPath(const std::string& name) {
  return std::string(VOSSEL_TESTS_DIR) + "/data/newgrf/" + name;
}
