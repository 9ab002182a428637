#include <string>
#include <unordered_map>

#include "script/FunctionTable.h"

namespace hylden::script {
namespace {

using Table = std::unordered_map<std::string, Value>;

void AddTexts(Table& table) {
  table["vbcr"] = Value::Text(u"\r");
  table["vblf"] = Value::Text(u"\n");
  table["vbcrlf"] = Value::Text(u"\r\n");
  table["vbnewline"] = Value::Text(u"\r\n");
  table["vbtab"] = Value::Text(u"\t");
  table["vbformfeed"] = Value::Text(u"\f");
  table["vbverticaltab"] = Value::Text(u"\v");
  table["vbnullchar"] = Value::Text(std::u16string(1, u'\0'));
  table["vbnullstring"] = Value::Text(u"");
}

void AddNumbers(Table& table) {
  struct Entry {
    const char* name;
    std::int32_t value;
  };
  constexpr Entry entries[] = {{"vbbinarycompare", 0},
                               {"vbtextcompare", 1},
                               // Tristate and calendar arguments
                               {"vbtrue", -1},
                               {"vbfalse", 0},
                               {"vbusedefault", -2},
                               {"vbusesystem", 0},
                               {"vbusesystemdayofweek", 0},
                               {"vbsunday", 1},
                               {"vbmonday", 2},
                               {"vbtuesday", 3},
                               {"vbwednesday", 4},
                               {"vbthursday", 5},
                               {"vbfriday", 6},
                               {"vbsaturday", 7},
                               {"vbfirstjan1", 1},
                               {"vbfirstfourdays", 2},
                               {"vbfirstfullweek", 3},
                               // Forms of FormatDateTime
                               {"vbgeneraldate", 0},
                               {"vblongdate", 1},
                               {"vbshortdate", 2},
                               {"vblongtime", 3},
                               {"vbshorttime", 4},
                               // Results of VarType
                               {"vbempty", 0},
                               {"vbnull", 1},
                               {"vbinteger", 2},
                               {"vblong", 3},
                               {"vbsingle", 4},
                               {"vbdouble", 5},
                               {"vbcurrency", 6},
                               {"vbdate", 7},
                               {"vbstring", 8},
                               {"vbobject", 9},
                               {"vberror", 10},
                               {"vbboolean", 11},
                               {"vbvariant", 12},
                               {"vbdataobject", 13},
                               {"vbdecimal", 14},
                               {"vbbyte", 17},
                               {"vbarray", 8192},
                               {"vbobjecterror", -2147221504},
                               // Colours
                               {"vbblack", 0},
                               {"vbred", 0xFF},
                               {"vbgreen", 0xFF00},
                               {"vbyellow", 0xFFFF},
                               {"vbblue", 0xFF0000},
                               {"vbmagenta", 0xFF00FF},
                               {"vbcyan", 0xFFFF00},
                               {"vbwhite", 0xFFFFFF}};
  for (const Entry& entry : entries) table[entry.name] = Value::Long(entry.value);
}

Table BuildTable() {
  Table table;
  AddTexts(table);
  AddNumbers(table);
  return table;
}

}  // namespace

const Value* FindConstant(std::string_view lowerName) {
  static const Table table = BuildTable();
  const auto found = table.find(std::string(lowerName));
  return found == table.end() ? nullptr : &found->second;
}

}  // namespace hylden::script
