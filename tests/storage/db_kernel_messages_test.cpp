#include <gtest/gtest.h>

#include <set>

#include "storage/db_error_translate.h"
#include "storage/db_kernel_exception.h"

namespace korvan::storage {
namespace {

TEST(DbKernelMessages, TextsAreKeptExactly) {
  const TDBErrorTranslate translate;
  EXPECT_EQ(translate.FDBErrorStrings().size(), 49u);
  std::set<int> codes;
  for (const auto& [text, code] : translate.FDBErrorStrings()) {
    EXPECT_TRUE(codes.insert(code).second) << code;
    EXPECT_EQ(translate.GetErrorString(code), text);
  }
  EXPECT_EQ(translate.GetErrorString(4288), "ung\xC3\xBCltiger Datenbankbezug");
  EXPECT_EQ(translate.GetErrorString(4305),
            "es sind bereits 20 (=DK_MAX_HANDLES) Datenbanken ge\xC3\xB6"
            "ffnet");
  EXPECT_EQ(translate.GetErrorString(4320),
            "nicht n\xC3\xA4her spezifizierter Datei-I/O-Fehler bzw.DOS-Fehler");
  EXPECT_EQ(translate.GetErrorString(4319),
            "f\xC3\xBCr Datenbanken ohne Locking: Es wurde versucht, eine Datei zu \xC3\xB6"
            "ffnen,die ein anderer Benutzer bereits exklusiv oder exklusiv zum "
            "Schreibenge\xC3\xB6"
            "ffnet hatf\xC3\xBCr Datenbanken mit Locking: ein anderer "
            "Benutzer f\xC3\xBChrt gerade eineSchreiboperation durch, auf deren Ende bis zum "
            "eingestellten Timeoutgewartet wurde, ohne da\xC3\x9F es entfernt wurde");
  EXPECT_EQ(translate.GetErrorString(4332),
            "Nur in der Einzelplatzversion: Datenbank wurde bereits von einem "
            "anderenBenutzer zum Schreiben ge\xC3\xB6"
            "ffnet");
  EXPECT_EQ(translate.GetErrorString(4354), "Record ist zu als gel\xC3\xB6scht gekennzeichnet");
  EXPECT_EQ(translate.GetErrorString(4357),
            "Datensatz nicht geschrieben. Gr\xC3\xB6\xC3\x9F"
            "e der Datendatei w\xC3\xBCrde 2GB "
            "\xC3\xBC"
            "berschreiten");
  EXPECT_EQ(translate.GetErrorString(5907), "Datenbank nicht gefunden");
  for (int unknown : {0, 4293, 4358, 5000, -1}) {
    EXPECT_EQ(translate.GetErrorString(unknown), "Fehlercode unbekannt") << unknown;
  }
}

TEST(DbKernelMessages, ExceptionFieldsNamesAndAssign) {
  const TDKDatabaseOperation operations[] = {
      TDKDatabaseOperation::doNone,   TDKDatabaseOperation::doInsert,
      TDKDatabaseOperation::doUpdate, TDKDatabaseOperation::doDelete,
      TDKDatabaseOperation::doRead,   TDKDatabaseOperation::doKeyMatch};
  const char* names[] = {"none", "Insert", "Update", "Delete", "Read", "KeyMatch"};
  for (size_t i = 0; i < std::size(operations); ++i) {
    EXPECT_STREQ(EDbKernelException(3, operations[i], 4313).what(), names[i]);
  }

  const EDbKernelException read(3, TDKDatabaseOperation::doRead, 4353, 'A');
  EXPECT_EQ(read.ErrorCodeAsString(), "4353 (Datei zu kurz um die Recordl\xC3\xA4nge zu lesen)");
  EXPECT_EQ(EDbKernelException(0, TDKDatabaseOperation::doRead, 4288).ErrorCodeAsString(),
            "4288 (Invalid DbHandle)");
  EXPECT_EQ(EDbKernelException(41, TDKDatabaseOperation::doRead, 4288).ErrorCodeAsString(),
            "4288 (Invalid DbHandle)");
  EXPECT_EQ(
      EDbKernelException(2, TDKDatabaseOperation::doRead, 4352, 'A', nullptr).ErrorCodeAsString(),
      "4352 (still unknown)");
  EXPECT_EQ(EDbKernelException(2, TDKDatabaseOperation::doRead, 9, 'A').ErrorCodeAsString(),
            "9 (Fehlercode unbekannt)");

  EDbKernelException copy(1, TDKDatabaseOperation::doNone, 0);
  copy.Assign(read);
  EXPECT_STREQ(copy.what(), "Read");
  EXPECT_EQ(copy.FDbHandle, 3);
  EXPECT_EQ(copy.FDbOperation, TDKDatabaseOperation::doRead);
  EXPECT_EQ(copy.FErrorCode, 4353);
  EXPECT_EQ(copy.FTableType, 'A');
}

TEST(DbKernelMessages, ConcurrencyExceptionMessageAndAssign) {
  // 45000.5 is 15 March 2023, 12:00.
  const EDbKernelConcurrencyException conflict(4, TDKDatabaseOperation::doUpdate, 'P', 45000.5,
                                               "MEIER", false);
  EXPECT_EQ(conflict.FErrorCode, 4358);
  EXPECT_STREQ(conflict.what(),
               "Update: Dataset (Type: P) has already been changed by user id: \"MEIER\" at: "
               "15.03.2023 12:00:00");
  EDbKernelConcurrencyException copy(1, TDKDatabaseOperation::doDelete, 'A', 1.0, "X", true);
  copy.Assign(conflict);
  EXPECT_EQ(std::string(copy.what()), conflict.what());
  EXPECT_EQ(copy.FModifiedById, "MEIER");
  EXPECT_EQ(copy.FModifiedDateTime, 45000.5);
  EXPECT_FALSE(copy.FRecordIsDeleted);
  EXPECT_EQ(copy.FDbOperation, TDKDatabaseOperation::doUpdate);
  // Assigning a plain kernel exception leaves the conflict fields alone.
  copy.Assign(EDbKernelException(2, TDKDatabaseOperation::doRead, 4352));
  EXPECT_EQ(copy.FModifiedById, "MEIER");
  EXPECT_EQ(copy.FErrorCode, 4352);
}

}  // namespace
}  // namespace korvan::storage
