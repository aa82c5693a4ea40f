// The Details window beside the main window: it follows browsing, and says of each sprite what
// vossel-cli sprite says.
#include <gtest/gtest.h>

#include "frmDetails.h"
#include "run_cli.h"
#include "scrollbar.h"
#include "ui_support.h"

using namespace vossel;

TEST(Details, FollowsBrowsingAndSaysWhatTheCliSays) {
  const std::string path = std::string(VOSSEL_BASESET_DIR) + "/openttd.grf";
  if (!uitest::fs::exists(path)) GTEST_SKIP() << path << " is not installed";
  uitest::StartedForm form;
  form->FileName = path;
  form->LoadGRF();
  form->mnuDetails->trigger();
  ASSERT_NE(form->Details, nullptr);
  EXPECT_NE(form->Details->Text().find("GRF ID: FFFFFFFE\n"), std::string::npos);
  // Pseudo-sprites and pictures, browsed through the scroll bar.
  for (const int n : {1, 2, 3, 12, 760}) {
    form->scrSprite->SetValue(n - 1);
    const std::string text = form->Details->Text();
    const std::string number =
        "Sprite " + std::to_string(n) + " (NFO " + std::to_string(n - 1) + ")";
    EXPECT_NE(text.find(number + "\n"), std::string::npos);
    // The CLI's lines after the facts it shares with the labels.
    const std::string cli = RunCli({"sprite", path, std::to_string(n)}).Out;
    EXPECT_NE(cli.find("\nNumber: " + number + "\n"), std::string::npos) << cli;
    std::string said;
    for (const char* key : {"\nAction: ", "\nRole: "})
      if (const size_t at = cli.find(key); at != std::string::npos) said = cli.substr(at + 1);
    ASSERT_FALSE(said.empty()) << n;
    EXPECT_EQ(text.substr(text.size() - said.size()), said) << n;
  }
}
