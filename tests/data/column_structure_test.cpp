#include "data/column_structure.h"

#include <gtest/gtest.h>

namespace korvan::data {
namespace {

TEST(ColumnStructure, ParsesValidDefinitions) {
  TColumnDef id = ParseColumnDef("ID,I,0,100,10,N,0,1,0,1,0,,0,1,45501,,,,,,");
  EXPECT_EQ(id.Name, "ID");
  EXPECT_EQ(id.Typ, TFeldTyp::Integer);
  EXPECT_EQ(id.Spalte, 0);
  EXPECT_EQ(id.Breite, 100);
  EXPECT_EQ(id.Laenge, 10);
  EXPECT_EQ(id.KzFeld, 'N');
  EXPECT_EQ(id.Nachkomma, 0);
  EXPECT_EQ(id.LayoutFlags, (std::vector<std::string>{"1", "0", "1", "0", "", "0", "1"}));
  EXPECT_EQ(id.CaptionTextNr, 45501);
  EXPECT_EQ(id.ViewFlags.size(), 6u);

  TColumnDef abzug = ParseColumnDef("Abzug,W,5,80,14,N,2,1,1,0,0,,1,1,45506,1,0,0,0,1,");
  EXPECT_EQ(abzug.Typ, TFeldTyp::Betrag);
  EXPECT_EQ(abzug.Spalte, 5);
  EXPECT_EQ(abzug.Nachkomma, 2);
  EXPECT_EQ(abzug.CaptionTextNr, 45506);
  EXPECT_EQ(abzug.ViewFlags, (std::vector<std::string>{"1", "0", "0", "0", "1", ""}));

  TColumnDef nr = ParseColumnDef(kDefaultColumnStructure);
  EXPECT_EQ(nr.Name, "Nr");
  EXPECT_FALSE(nr.CaptionTextNr.has_value());
  EXPECT_EQ(ParseColumnDef("Kurz,G,3,20,1").Typ, TFeldTyp::Kodiert);
  EXPECT_EQ(ParseColumnDef("Menge,R,3,20,1,,").Nachkomma, 0);

  TColumnStructure structure = TColumnStructure::Parse({id.Definition, abzug.Definition});
  EXPECT_EQ(structure.FeldAnzahl(), 2);
  EXPECT_EQ(structure.ValueCount(), 6);
  EXPECT_EQ(structure.IndexOf("Abzug"), 1);
  EXPECT_EQ(structure.IndexOf("abzug"), -1);
  EXPECT_EQ(structure.Definitions()[1], abzug.Definition);
  EXPECT_EQ(TColumnStructure::Default().FeldAnzahl(), 1);
}

TEST(ColumnStructure, MalformedDefinitionsNameStringAndField) {
  struct Case {
    std::string definition;
    std::string field;
  };
  const std::vector<Case> cases = {
      {"", "Feld 2 (Typ) fehlt"},
      {"ID,I,0,100", "Feld 5 (Länge) fehlt"},
      {",I,0,100,10", "Feld 1 (Name)"},
      {"ID,X,0,100,10", "Feld 2 (Typ)"},
      {"ID,II,0,100,10", "Feld 2 (Typ)"},
      {"ID,I,a,100,10", "Feld 3 (Spalte)"},
      {"ID,I,0,-5,10", "Feld 4 (Breite)"},
      {"ID,I,0,100,1x", "Feld 5 (Länge)"},
      {"ID,I,0,100,99999999999", "Feld 5 (Länge)"},
      {"ID,I,0,100,10,NN", "Feld 6 (Kennzeichen)"},
      {"ID,I,0,100,10,N,99", "Feld 7 (Nachkommastellen)"},
      {"ID,I,0,100,10,N,0,x", "Feld 8 (Layout)"},
      {"ID,I,0,100,10,N,0,1,0,1,0,,0,1,abc", "Feld 15 (Textnummer)"},
  };
  for (const Case& c : cases) {
    try {
      ParseColumnDef(c.definition);
      ADD_FAILURE() << "accepted: " << c.definition;
    } catch (const EColumnStructureError& error) {
      std::string message = error.what();
      EXPECT_NE(message.find("\"" + c.definition + "\""), std::string::npos) << message;
      EXPECT_NE(message.find(c.field), std::string::npos) << message;
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
