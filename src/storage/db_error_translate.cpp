#include "storage/db_error_translate.h"

#include <algorithm>

namespace korvan::storage {
namespace {

struct CodeText {
  int code;
  const char* text;
};

constexpr CodeText kMessages[] = {
    {4288, "ungültiger Datenbankbezug"},
    {4289, "unbekannte Task"},
    {4290, "Datenbank wurde von der gleichen Task bereits geöffnet"},
    {4291, "keine doppelten Schlüssel zulässig"},
    {4292, "Für diesen Datenbanktyp ist kein Locking möglich"},
    {4300, "Falsche Datenbank-Version"},
    {4301, "Datenprüfung: übergeordneter Knoten des Datensatzes nicht vorhanden"},
    {4302, "Unzulässige Datensatzlänge"},
    {4303, "Datenbankdatei stammt von Vesko 5.3 oder Ostrell 1.0"},
    {4304, "Datendatei existiert bereits"},
    {4305, "es sind bereits 20 (=DK_MAX_HANDLES) Datenbanken geöffnet"},
    {4306, "die Datenbank wurde bereits von 16 (=DK_MAX_TASKS - 1) Tasks geöffnet"},
    {4307, "Datendatei nicht vorhanden"},
    {4308, "Schlüsseldatei nicht vorhanden"},
    {4309, "Datei ist keine Datenbankdatei"},
    {4310, "Datendatei enthält keinen Copyrightvermerk"},
    {4311, "Datenbankdatei stammt von Vesko 5.0 oder 5.1"},
    {4312, "Datenbankdatei stammt von Vesko 5.2"},
    {4313, "kein Ersetzen des Datensatzes möglich"},
    {4314, "Schlüssel nicht vorhanden; bei iDK_KeyDelete ist dies ein fataler Fehler"},
    {4315, "Datenbank-Cache ist zu klein, um Operation auszuführen"},
    {4316, "Datenbank bleibt geöffnet"},
    {4317, "Datensatz ist gesperrt"},
    {4318,
     "Es wurde versucht, eine Datei auf einem Medium zu öffnen, für das keine Schreiberlaubnis "
     "besteht"},
    {4319,
     "für Datenbanken ohne Locking: Es wurde versucht, eine Datei zu öffnen,die ein anderer "
     "Benutzer bereits exklusiv oder exklusiv zum Schreibengeöffnet hatfür Datenbanken mit "
     "Locking: ein anderer Benutzer führt gerade eineSchreiboperation durch, auf deren Ende bis "
     "zum eingestellten Timeoutgewartet wurde, ohne daß es entfernt wurde"},
    {4320, "nicht näher spezifizierter Datei-I/O-Fehler bzw.DOS-Fehler"},
    {4321, "Datendatei konnte nicht initialisiert werden"},
    {4322, "Schlüsseldatei konnte nicht initialisiert werden"},
    {4323, "Lockdatei konnte nicht initialisiert werden"},
    {4324, "Datensatz nicht vorhanden"},
    {4325, "Fataler Fehler: Datenbank muß regeneriert werden, dann sollte sie OK sein"},
    {4326, "Fataler Fehler: Datenbank muß regeneriert werden, dann könnte sie OK sein"},
    {4331, "Datenbankdatei stammt von Vesko 6.0"},
    {4332,
     "Nur in der Einzelplatzversion: Datenbank wurde bereits von einem anderenBenutzer zum "
     "Schreiben geöffnet"},
    {4336, "Schlüsseldatei ist sehr groß, Datenbank sollte komprimiert werden"},
    {4337, "Satz verändert ! Wiederholung der Datenprüfung erforderlich"},
    {4352, "ungültige Recordposition"},
    {4353, "Datei zu kurz um die Recordlänge zu lesen"},
    {4354, "Record ist zu als gelöscht gekennzeichnet"},
    {4355, "an der Recordposition steht ein Record mit ungültiger Länge"},
    {4356, "Recordlänge reicht über das Dateiende hinaus"},
    {4357, "Datensatz nicht geschrieben. Größe der Datendatei würde 2GB überschreiten"},
    {5888, "unbekannter Datenbanktyp"},
    {5889, "ungültiger Dateiname"},
    {5890, "Fehler bei der Registrierung eines DB-Typs"},
    {5904, "Kein Datensatz gefunden"},
    {5905, "Konfigurationsdatei *.FRM oder *.MSK nicht gefunden"},
    {5906, "Datenbank existiert bereits"},
    {5907, "Datenbank nicht gefunden"},
};

}  // namespace

TDBErrorTranslate::TDBErrorTranslate() {
  error_strings_.reserve(std::size(kMessages));
  for (const CodeText& message : kMessages) error_strings_.emplace_back(message.text, message.code);
}

std::string TDBErrorTranslate::GetErrorString(int code) const {
  auto hit = std::find_if(error_strings_.begin(), error_strings_.end(),
                          [code](const auto& entry) { return entry.second == code; });
  if (hit == error_strings_.end()) return "Fehlercode unbekannt";
  return hit->first;
}

const TDBErrorTranslate& KernelErrorTranslate() {
  static const TDBErrorTranslate translate;
  return translate;
}

}  // namespace korvan::storage
