#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "formula/catalogue/builtin_reb_formeln.h"
#include "formula/catalogue/tb_reb_formel.h"

namespace korvan::app {

class MasterDataSession;

// The formula catalogue a command reads: the installation's in `data_dir`; when the
// directory does not exist and was not named (-d), the built-in list, which is said on
// `err`.
class FormulaCatalogueAccess {
 public:
  FormulaCatalogueAccess(const std::string& data_dir, bool named, std::ostream& err);
  ~FormulaCatalogueAccess();

  formula::TRebFormelSource& Source();
  std::vector<formula::TRebFormelRow> All();

 private:
  std::unique_ptr<MasterDataSession> session_;
  std::unique_ptr<formula::TTbRebFormel> table_;
  std::unique_ptr<formula::TRebFormelTableSource> table_source_;
  formula::TBuiltInRebFormelSource builtin_;
};

}  // namespace korvan::app
