#include "data/db/db_types.h"

#include <array>

#include "storage/db_kernel.h"
#include "storage/db_kernel_codes.h"

namespace korvan::data {
namespace {

using storage::kDbTypeRegistrationFailed;
using storage::kDbUnknownType;

constexpr std::array<DbTypeDefinition, 20> kStandardTypes = {{
    {'K', 1, "DbKpTabellen", ".QK", 67, "Kalkulations Projekt Tabellen", "DB_KP"},
    {'R', 2, "DbKrTabellen", ".QR", 67, "Kalkulations Repräsentanten Tabellen", "DB_KR"},
    {'A', 3, "DbLvTabellen", ".QA", 70, "LV Tabellen", "DB_LV"},
    {'B', 4, "DbKatTabellen", ".QB", 55, "Katalog Tabellen", "DB_Kat"},
    {'C', 5, "DbTextTabellen", ".QC", 45, "Text Tabellen", "DB_Texte"},
    {'D', 7, "DbRisTabellen", ".QD", 51, "RIS Tabellen", "DB_Ris"},
    {'Y', 8, "dbUserFelderDefTabellen", ".QY", 30, "Userfelder Definitions Tabellen",
     "DB_UserFelderDef"},
    {'X', 9, "dbUserFelderTabellen", ".QX", 85, "Userfelder Tabellen", "DB_UserFelder"},
    {'M', 10, "dbLvExTabellen", ".QM", 35, "Zusätzliche LV Tabellen", "DB_LvEx"},
    {'N', 11, "dbRechVerwTabellen", ".QN", 40, "Rechnungsverwaltung Tabellen", "DB_Rv"},
    {'W', 12, "dbQProjektTabellen", ".QW", 25, "Projektverwaltung Tabellen", "DB_QProjekt"},
    // The descriptions are shown in lists as they always were, misspellings included.
    {'E', 13, "DbStammTabellen", ".QE", 33, "Allgemeien Stammdaten Tabellen", "DB_Stamm"},
    {'H', 15, "DbAnsatzTabellen", ".QH", 25, "Berechnungs-Ansatz Tabellen", "DB_Ansatz"},
    {'U', 16, "DbStammQOfficeTabellen", ".QU", 46, "Adressverwaltungs Tabellen", "DB_QOffice"},
    {'S', 17, "DbUpTabellen", ".QS", 67, "Kalkulation Unterpositionen Tabellen", "DB_UP"},
    {'T', 18, "DbQPreisPflegeTabellen", ".QT", 70, "Preisverwaltung Tabellen", "DB_QPR"},
    {'I', 19, "DbControTabellen", ".QI", 25, "Rechetverwaltung Tabellen", "DB_Contro"},
    {'F', 20, "dbStructTabellen", ".QF", 19, "Strukturverwaltung Tabellen TALVEX", "DB_Struct"},
    {'L', 21, "DbProjektGlobDataTabellen", ".QL", 87, "DB übergreifende Tabellen", "DB_GlobData"},
    // The property type has no group name of its own: its tables live beside the LV,
    // catalog and text databases.
    {'P', 22, "DbPropertyTabellen", ".QP", 35, "Property Tabellen", nullptr},
}};

DbRegistrationResult Refused(int code, const char* text) {
  return {code, std::string(kDbRegistrationFailedPrefix) + text};
}

// The callback rules, in the order they are checked.
const char* CallbackProblem(const DbIoCallbacks& io) {
  if (io.iIO_Convert && io.fIO_VRecCheck)
    return "Wenn iIO_Convert<>nil muss fIO_VRecCheck=nil sein";
  if (!io.iIO_TabKeyGet && !io.iIO_KeyGet)
    return "iIO_TabKeyGet oder iIO_KeyGet muessen gesetzt sein";
  if (!io.iIO_RecRead) return "iIO_RecRead muss gesetzt sein";
  if (!io.iIO_RecIDBuild) return "iIO_RecIDBuild muss gesetzt sein";
  if (!io.iIO_RecLenGet) return "iIO_RecLenGet muss gesetzt sein";
  if (!io.iIO_KeysInsert) return "iIO_KeysInsert muss gesetzt sein";
  if (!io.iIO_RecInsert1 && !io.iIO_RecInsert2 && !io.iIO_RecInsert3) {
    return "iIO_RecInsert1, 2 oder 3 muss gesetzt sein";
  }
  if (!io.iIO_RecDelete1 && !io.iIO_RecDelete2 && !io.iIO_RecDelete3) {
    return "iIO_RecDelete1, 2 oder 3 muss gesetzt sein";
  }
  if (!io.iIO_RecUpdate) return "iIO_RecUpdate muss gesetzt sein";
  if (!io.iIO_TableInfo) return "iIO_TableInfo muss gesetzt sein";
  if (!io.iIO_RefCheck) return "iIO_RefCheck muss gesetzt sein";
  return nullptr;
}

// A callable of any callback signature that refuses to run.
struct Unbound {
  const char* name;
  template <typename... Args>
  [[noreturn]] int operator()(Args&&...) const {
    throw std::logic_error(std::string("IO callback ") + name +
                           " is not bound: no table layer registered");
  }
};

struct UnboundCheck {
  const char* name;
  template <typename... Args>
  [[noreturn]] bool operator()(Args&&...) const {
    Unbound{name}();
  }
};

}  // namespace

DbIoCallbacks UnboundIoCallbacks() {
  DbIoCallbacks io;
  // Like the table layer's block: records are checked, never converted by the callback.
  io.fIO_VRecCheck = UnboundCheck{"fIO_VRecCheck"};
  io.iIO_TabKeyGet = Unbound{"iIO_TabKeyGet"};
  io.iIO_KeyGet = Unbound{"iIO_KeyGet"};
  io.iIO_RecRead = Unbound{"iIO_RecRead"};
  io.iIO_RecIDBuild = Unbound{"iIO_RecIDBuild"};
  io.iIO_RecLenGet = Unbound{"iIO_RecLenGet"};
  io.iIO_KeysInsert = Unbound{"iIO_KeysInsert"};
  io.iIO_RecInsert1 = Unbound{"iIO_RecInsert1"};
  io.iIO_RecInsert2 = Unbound{"iIO_RecInsert2"};
  io.iIO_RecInsert3 = Unbound{"iIO_RecInsert3"};
  io.iIO_RecDelete1 = Unbound{"iIO_RecDelete1"};
  io.iIO_RecDelete2 = Unbound{"iIO_RecDelete2"};
  io.iIO_RecDelete3 = Unbound{"iIO_RecDelete3"};
  io.iIO_RecUpdate = Unbound{"iIO_RecUpdate"};
  io.iIO_TableInfo = Unbound{"iIO_TableInfo"};
  io.iIO_RefCheck = Unbound{"iIO_RefCheck"};
  return io;
}

DbRegistrationResult DbTypeRegistry::Register(DbTypeRegistration type) {
  if (type.letter < 'A' || type.letter > 'Z') return Refused(kDbUnknownType, "falscher DbType");
  if (IsRegistered(type.letter))
    return Refused(kDbTypeRegistrationFailed, "DbTyp schon registriert");
  if (type.interface_id != 0 && type.interface_id != 32) {
    return Refused(kDbTypeRegistrationFailed, "Kennung für VB-Schnittstelle muss 0 oder 32 sein");
  }
  if (type.fixed_name && (type.fixed_name->empty() || type.fixed_name->size() > 8)) {
    return Refused(kDbTypeRegistrationFailed,
                   "Fall FixName, muss Name muss 1..8 Zeichen enthalten");
  }
  if (type.extension.empty() || type.extension.size() > 3) {
    return Refused(kDbTypeRegistrationFailed,
                   "Dateinamenserweiterung muss aus 1..3 Zeichen bestehen");
  }
  if (const char* problem = CallbackProblem(type.io)) {
    return Refused(kDbTypeRegistrationFailed, problem);
  }
  // The kernel chooses open modes and lock files by this flag.
  storage::iDK_SetTypeShareable(type.letter, type.shared);
  const char letter = type.letter;
  types_.emplace(letter, std::move(type));
  return {};
}

const DbTypeRegistration* DbTypeRegistry::Find(char letter) const {
  auto it = types_.find(letter);
  return it == types_.end() ? nullptr : &it->second;
}

std::span<const DbTypeDefinition> StandardDbTypes() {
  return kStandardTypes;
}

void RegisterDBTypes(DbTypeRegistry& registry, const DbIoCallbacks& io) {
  for (const DbTypeDefinition& definition : kStandardTypes) {
    DbTypeRegistration type;
    type.letter = definition.letter;
    type.number = definition.number;
    type.extension = definition.extension;
    type.key_length = definition.key_length;
    type.io = io;
    type.shared = true;
    type.table_set = definition.table_set;
    type.description = definition.description;
    DbRegistrationResult result = registry.Register(std::move(type));
    if (!result.ok()) throw DbRegistrationError(definition.table_set, std::move(result));
  }
}

const DbTypeDefinition& DbTypeOf(char letter) {
  for (const DbTypeDefinition& definition : kStandardTypes) {
    if (definition.letter == letter) return definition;
  }
  throw std::invalid_argument("illegal DB File type key");
}

std::string DbTypeGroupName(char letter) {
  const DbTypeDefinition& definition = DbTypeOf(letter);
  if (definition.group_name == nullptr) throw std::invalid_argument("illegal DB File type key");
  return definition.group_name;
}

std::string DbTypeDescription(char letter) {
  return DbTypeOf(letter).description;
}

}  // namespace korvan::data
