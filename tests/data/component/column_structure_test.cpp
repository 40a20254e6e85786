#include "data/component/column_structure.h"

#include <gtest/gtest.h>

namespace korvan::data {
namespace {

TEST(ColumnStructure, ParsesDefinitionsAndNamesStringAndFieldOfMalformedOnes) {
  const TColumnDef abzug = ParseColumnDef("Abzug,W,5,80,14,N,2,1,1,0,0,,1,1,45506,1,0,0,0,1,");
  EXPECT_EQ(abzug.Typ, TFeldTyp::Betrag);
  EXPECT_EQ(abzug.Breite, 80);
  EXPECT_EQ(abzug.Laenge, 14);
  EXPECT_EQ(abzug.Nachkomma, 2);
  EXPECT_EQ(abzug.LayoutFlags, (std::vector<std::string>{"1", "1", "0", "0", "", "1", "1"}));
  EXPECT_EQ(abzug.CaptionTextNr, 45506);
  EXPECT_EQ(abzug.ViewFlags, (std::vector<std::string>{"1", "0", "0", "0", "1", ""}));
  EXPECT_FALSE(ParseColumnDef("Kurz,G,3,20,1").CaptionTextNr.has_value());
  const TColumnStructure structure =
      TColumnStructure::Parse({"ID,I,0,100,10,N,0,1,0,1,0,,0,1,45501", abzug.Definition});
  EXPECT_EQ(structure.ValueCount(), 6);
  EXPECT_EQ(structure.IndexOf("Abzug"), 1);
  EXPECT_EQ(structure.IndexOf("abzug"), -1);

  const std::pair<std::string, std::string> cases[] = {
      {"", "Feld 2 (Typ) fehlt"},
      {"ID,I,0,100", "Feld 5 (Länge) fehlt"},
      {",I,0,100,10", "Feld 1 (Name)"},
      {"ID,II,0,100,10", "Feld 2 (Typ)"},
      {"ID,I,a,100,10", "Feld 3 (Spalte)"},
      {"ID,I,0,-5,10", "Feld 4 (Breite)"},
      {"ID,I,0,100,99999999999", "Feld 5 (Länge)"},
      {"ID,I,0,100,10,NN", "Feld 6 (Kennzeichen)"},
      {"ID,I,0,100,10,N,99", "Feld 7 (Nachkommastellen)"},
      {"ID,I,0,100,10,N,0,x", "Feld 8 (Layout)"},
      {"ID,I,0,100,10,N,0,1,0,1,0,,0,1,abc", "Feld 15 (Textnummer)"},
  };
  for (const auto& [definition, field] : cases) {
    try {
      ParseColumnDef(definition);
      ADD_FAILURE() << "accepted: " << definition;
    } catch (const EColumnStructureError& error) {
      EXPECT_NE(std::string(error.what()).find("\"" + definition + "\": " + field),
                std::string::npos)
          << error.what();
    }
  }
  try {
    TColumnStructure::Parse({"A,I,0,1,1", "B,N,1,1,1", "C,N,1,1,1"});
    ADD_FAILURE() << "duplicate column number accepted";
  } catch (const EColumnStructureError& error) {
    EXPECT_NE(std::string(error.what()).find("\"C,N,1,1,1\": Feld 3 (Spalte doppelt)"),
              std::string::npos)
        << error.what();
  }
}

}  // namespace
}  // namespace korvan::data
