#include "run/RunParts.h"

#include <utility>

#include "documents/Documents.h"
#include "instruments/Instruments.h"
#include "measure/InterpClass.h"
#include "run/JournalText.h"
#include "shell/FormInput.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

template <class Driver>
RunPart DefinitionPart(std::string_view kind, const Driver& driver) {
  return PartOf(kind, driver.FileName(), ContentOf(driver.Definition()));
}

}  // namespace

RunPart PartOf(std::string_view kind, const std::string& file, std::string_view content) {
  return {std::string(kind) + (file.empty() ? "" : " " + FileNameOnly(file)), Crc32(content)};
}

std::string ContentOf(const InterpClass& table) {
  std::string content;
  for (const FactorPoint& point : table.Points())
    content += ShortestText(point.Freq) + " " + ShortestText(double{point.Value}) + "\n";
  return content;
}

void AddStation(RunParts& parts, const Documents& documents, const Instruments& instruments) {
  const Equip& equip = documents.equip;
  parts.push_back(PartOf(FileKind(equip.Record), equip.EquipFileName, ContentOf(equip.Record)));
  parts.push_back(DefinitionPart("signal generator definition", instruments.sigGen));
  parts.push_back(DefinitionPart("meter definition", instruments.meter));
  parts.push_back(DefinitionPart("power meter definition", instruments.pm));
}

Done SameParts(const RunParts& then, const RunParts& now) {
  if (then.empty()) return Because("The journal does not hold what its run was made of: it can be saved only.");
  if (then.size() != now.size()) return Because("The journal is of another version of Hylden: it can be saved only.");
  for (std::size_t i = 0; i < now.size(); ++i) {
    if (then[i].Checksum == now[i].Checksum) continue;
    const std::string other = then[i].Name == now[i].Name ? "" : ": " + then[i].Name;
    return Because("The " + now[i].Name + " is not the one of then" + other + ".");
  }
  return {};
}

}  // namespace hylden
