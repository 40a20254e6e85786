#pragma once

#include <exception>
#include <string>

#include "storage/db_error_translate.h"

namespace korvan::storage {

enum class TDKDatabaseOperation { doNone, doInsert, doUpdate, doDelete, doRead, doKeyMatch };

// "none", "Insert", "Update", "Delete", "Read", "KeyMatch".
const char* DatabaseOperationName(TDKDatabaseOperation operation);

// A kernel failure reported by exception (record read, the 2 GB check). The message is
// the operation's display name; the code says what went wrong.
class EDbKernelException : public std::exception {
 public:
  EDbKernelException(int db_handle, TDKDatabaseOperation operation, int error_code,
                     char table_type = 0,
                     const TDBErrorTranslate* translate = &KernelErrorTranslate());

  const char* what() const noexcept override { return message_.c_str(); }
  const std::string& Message() const { return message_; }

  // "<code> (<text>)"; the text is "still unknown" without a translation object and
  // "Invalid DbHandle" for a handle outside 1..40.
  std::string ErrorCodeAsString() const;

  // Copies message, handle, operation, code and table type.
  virtual void Assign(const EDbKernelException& other);

  int FDbHandle;
  TDKDatabaseOperation FDbOperation;
  char FTableType;
  int FErrorCode;
  const TDBErrorTranslate* FDBErrorTranslate;

 protected:
  std::string message_;
};

// Raised by update and delete when another user rewrote the record after this handle
// was opened. The fields describe the stored record as found.
class EDbKernelConcurrencyException : public EDbKernelException {
 public:
  EDbKernelConcurrencyException(int db_handle, TDKDatabaseOperation operation, char table_type,
                                double modified_date_time, std::string modified_by_id,
                                bool record_is_deleted);

  // Also copies the three fields when the other is a concurrency exception.
  void Assign(const EDbKernelException& other) override;

  double FModifiedDateTime;
  std::string FModifiedById;
  bool FRecordIsDeleted;
};

}  // namespace korvan::storage
