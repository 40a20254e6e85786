// Long texts are records as long as their text: the check and the rebuild of the project's
// text database must keep them whole.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "boq/text/long_text_store.h"
#include "boq/text/rich_text.h"
#include "boq/text/rtf_writer.h"
#include "data/tables/std_db.h"
#include "data/tables/std_db_datas.h"
#include "testing/run_korvan.h"
#include "testing/temp_dir.h"

namespace korvan {
namespace {

namespace fs = std::filesystem;
using testing::ExpectKorvan;

class ProjectTexts {
 public:
  explicit ProjectTexts(const fs::path& base)
      : db_("DB_Texte", (base / "PROJEKTE/Beispiel/").string(), 'C', 45) {
    db_.SetMessages(&messages_);
    EXPECT_EQ(db_.DbOpen(true), 0);
  }
  ~ProjectTexts() {
    db_.DbClose();
    data::TStdDbDatas::Instance().ReleaseEmpty();
  }
  boq::TLongTextStore Store() { return boq::TLongTextStore(db_); }

 private:
  data::TCollectedMessages messages_;
  data::TStdDb db_;
};

std::string TextOfLength(size_t length) {
  std::string plain;
  while (plain.size() < length) plain += "Mauerwerk aus Kalksandstein, Größe 2 DF, je m² 12,50 €\n";
  return boq::WriteRtf(boq::RichTextFromPlain(plain));
}

TEST(LongTextMaintenance, CheckAndRebuildKeepLongTextsWhole) {
  testing::TempDir dir;
  const fs::path base = testing::MakeInstallation(dir, "init");
  const size_t lengths[] = {0, 10, 3000, 70000};
  // The texts are the comments of four LVs (kind "C"), so that every text has its owner.
  for (int lv = 1; lv <= 4; ++lv) {
    ExpectKorvan({"lv", "new", "LV " + std::to_string(lv), "-d", base.string()}, 0);
  }
  {
    ProjectTexts texts(base);
    boq::TLongTextStore store = texts.Store();
    for (int32_t owner = 1; owner <= 4; ++owner) {
      ASSERT_EQ(store.Store(owner, 'C', 49, TextOfLength(lengths[owner - 1]), {}), 0);
    }
  }
  ExpectKorvan({"check", "-d", base.string()}, 0, {" 0 Problem(e)"});
  ExpectKorvan({"rebuild", "-d", base.string(), "--group", "DB_Texte"}, 0);
  ExpectKorvan({"check", "-d", base.string()}, 0, {" 0 Problem(e)"});
  ProjectTexts texts(base);
  boq::TLongTextStore store = texts.Store();
  for (int32_t owner = 1; owner <= 4; ++owner) {
    EXPECT_EQ(store.Read(owner, 'C', 49).rich_text, TextOfLength(lengths[owner - 1])) << owner;
  }
}

}  // namespace
}  // namespace korvan
