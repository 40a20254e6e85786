#include "storage/db_kernel_exception.h"

#include <utility>

#include "storage/db_kernel_codes.h"
#include "storage/delphi_datetime.h"

namespace korvan::storage {
namespace {

constexpr int kFirstHandle = 1;
constexpr int kLastHandle = 40;

// The resource text "%s: Dataset (Type: %s) has already been changed by user id: "%s"
// at: %s", filled in.
std::string ConflictMessage(TDKDatabaseOperation operation, char table_type,
                            const std::string& modified_by_id, double modified_date_time) {
  return std::string(DatabaseOperationName(operation)) +
         ": Dataset (Type: " + std::string(1, table_type) +
         ") has already been changed by user id: \"" + modified_by_id +
         "\" at: " + FormatDelphiDateTime(modified_date_time);
}

}  // namespace

const char* DatabaseOperationName(TDKDatabaseOperation operation) {
  switch (operation) {
    case TDKDatabaseOperation::doNone:
      return "none";
    case TDKDatabaseOperation::doInsert:
      return "Insert";
    case TDKDatabaseOperation::doUpdate:
      return "Update";
    case TDKDatabaseOperation::doDelete:
      return "Delete";
    case TDKDatabaseOperation::doRead:
      return "Read";
    case TDKDatabaseOperation::doKeyMatch:
      return "KeyMatch";
  }
  return "none";
}

EDbKernelException::EDbKernelException(int db_handle, TDKDatabaseOperation operation,
                                       int error_code, char table_type,
                                       const TDBErrorTranslate* translate)
    : FDbHandle(db_handle),
      FDbOperation(operation),
      FTableType(table_type),
      FErrorCode(error_code),
      FDBErrorTranslate(translate),
      message_(DatabaseOperationName(operation)) {}

std::string EDbKernelException::ErrorCodeAsString() const {
  std::string text;
  if (FDBErrorTranslate == nullptr) {
    text = "still unknown";
  } else if (FDbHandle < kFirstHandle || FDbHandle > kLastHandle) {
    text = "Invalid DbHandle";
  } else {
    text = FDBErrorTranslate->GetErrorString(FErrorCode);
  }
  return std::to_string(FErrorCode) + " (" + text + ")";
}

void EDbKernelException::Assign(const EDbKernelException& other) {
  message_ = other.message_;
  FDbHandle = other.FDbHandle;
  FDbOperation = other.FDbOperation;
  FErrorCode = other.FErrorCode;
  FTableType = other.FTableType;
}

EDbKernelConcurrencyException::EDbKernelConcurrencyException(
    int db_handle, TDKDatabaseOperation operation, char table_type, double modified_date_time,
    std::string modified_by_id, bool record_is_deleted)
    : EDbKernelException(db_handle, operation, kDkConcurrencyConflict, table_type),
      FModifiedDateTime(modified_date_time),
      FModifiedById(std::move(modified_by_id)),
      FRecordIsDeleted(record_is_deleted) {
  message_ = ConflictMessage(operation, table_type, FModifiedById, FModifiedDateTime);
}

void EDbKernelConcurrencyException::Assign(const EDbKernelException& other) {
  EDbKernelException::Assign(other);
  if (const auto* conflict = dynamic_cast<const EDbKernelConcurrencyException*>(&other)) {
    FModifiedDateTime = conflict->FModifiedDateTime;
    FModifiedById = conflict->FModifiedById;
    FRecordIsDeleted = conflict->FRecordIsDeleted;
  }
}

}  // namespace korvan::storage
