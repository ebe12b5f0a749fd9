#include "workbench/costing/expression.h"

#include <muParser.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

namespace costing {
namespace {

// Thrown by the operations below, through the parser.
struct NoResult {
  const char* why;
};

double finite(double value) {
  if (!std::isfinite(value)) throw NoResult{"计算结果超出可计算的范围，请检查数字是否过大。"};
  return value;
}

double add(double a, double b) {
  return finite(a + b);
}
double subtract(double a, double b) {
  return finite(a - b);
}
double multiply(double a, double b) {
  return finite(a * b);
}
double divide(double a, double b) {
  if (b == 0.0) throw NoResult{"除数为零，请修改除数。"};
  return finite(a / b);
}
double power(double a, double b) {
  if (a == 0.0 && b < 0.0) throw NoResult{"除数为零，请修改除数。"};
  const double value = std::pow(a, b);
  if (std::isnan(value)) throw NoResult{"负数不能开方，请修改乘方。"};
  return finite(value);
}
double percent(double a) {
  return a / 100.0;
}
double negated(double a) {
  return -a;
}
double unchanged(double a) {
  return a;
}
double absolute(double a) {
  return std::fabs(a);
}
double roundTo(double value, double places) {
  if (places != std::floor(places) || places < 0 || places > Decimal::Places) {
    throw NoResult{"round 的第二个参数应为 0 到 12 的整数，请修改位数。"};
  }
  const std::optional<Decimal> exact = Decimal::fromDouble(value);
  if (!exact) throw NoResult{"计算结果超出可计算的范围，请检查数字是否过大。"};
  return exact->rounded(static_cast<int>(places)).toDouble();
}
double smallest(const double* values, int count) {
  double result = values[0];
  for (int i = 1; i < count; ++i) result = std::fmin(result, values[i]);
  return result;
}
double largest(const double* values, int count) {
  double result = values[0];
  for (int i = 1; i < count; ++i) result = std::fmax(result, values[i]);
  return result;
}

// The characters of a UTF-8 text, each as its bytes.
std::vector<std::string_view> charactersOf(std::string_view text) {
  std::vector<std::string_view> characters;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t next = at + 1;
    while (next < text.size() && (static_cast<unsigned char>(text[next]) & 0xC0) == 0x80) ++next;
    characters.push_back(text.substr(at, next - at));
    at = next;
  }
  return characters;
}

// The plain sign that a character stands for; 0 when it stands for none.
char plainSign(std::string_view character) {
  if (character.size() == 1) {
    const char c = character.front();
    if (c == '\t' || c == '\n' || c == '\r') return ' ';
    // What the parser takes for comparisons, choices and texts has no place in a price.
    constexpr std::string_view others = "\"'?:;=<>&|!#$@`~{}\\_";
    if (c == '[') return '(';
    if (c == ']') return ')';
    return c >= ' ' && c < 0x7F && others.find(c) == std::string_view::npos ? c : '\0';
  }
  if (character == "×" || character == "✕" || character == "·") return '*';
  if (character == "÷") return '/';
  if (character == "−" || character == "—" || character == "–") return '-';
  if (character == "。") return '.';
  if (character == "【" || character == "〔") return '(';
  if (character == "】" || character == "〕") return ')';
  if (character == "\u3000" || character == "\u00A0") return ' ';
  if (character.size() == 3) {
    const auto byte = [&character](int i) {
      return static_cast<std::uint32_t>(static_cast<unsigned char>(character[std::size_t(i)]));
    };
    const std::uint32_t code =
        ((byte(0) & 0x0F) << 12) | ((byte(1) & 0x3F) << 6) | (byte(2) & 0x3F);
    if (code > 0xFF00 && code < 0xFF5F) {
      const char narrow = static_cast<char>(code - 0xFEE0);
      return plainSign(std::string_view(&narrow, 1));
    }
  }
  return '\0';
}

std::string place(int column) {
  return "第 " + std::to_string(column) + " 个字符";
}

// What a variable is called inside the parser: as short as the shortest name, and with a sign that
// nobody can type.
std::string standIn(std::size_t variable) {
  return {'_', static_cast<char>('a' + static_cast<char>(variable))};
}

// What the parser complains of, in the user's words.
std::string complaint(const mu::Parser::exception_type& error, int column, bool atEnd,
                      const Variables& variables) {
  std::string token = error.GetToken().substr(0, 20);
  token.resize(std::min(token.find(' '), token.size()));  // it reaches to the end
  for (std::size_t i = 0; i < variables.size(); ++i) {
    if (token == standIn(i)) token = variables[i].first;
  }
  switch (error.GetCode()) {
    case mu::ecUNEXPECTED_EOF:
    case mu::ecEMPTY_EXPRESSION:
      return "计算式没有写完，请补全。";
    case mu::ecTOO_FEW_PARAMS:
      return place(column) + "前的函数缺少参数，请补全。";
    case mu::ecTOO_MANY_PARAMS:
      return place(column) + "前的函数参数过多，请删去多余的。";
    case mu::ecUNEXPECTED_ARG_SEP:
      return place(column) + "的逗号多余：数字中请不要输入千分位逗号。";
    case mu::ecUNEXPECTED_PARENS:
      return place(column) + "的括号多余或位置不对，请检查。";
    default:
      return atEnd ? "计算式没有写完，请补全。"
                   : place(column) + "“" + token + "”不能识别，请检查计算式。";
  }
}

mu::Parser makeParser() {
  mu::Parser parser;
  parser.ClearFun();
  parser.ClearConst();
  parser.ClearInfixOprt();
  parser.ClearPostfixOprt();
  // Its own division answers infinity for zero, which a later step may turn into a figure again.
  parser.EnableBuiltInOprt(false);
  parser.DefineOprtChars("+-*/^%");
  parser.DefineOprt("+", add, mu::prADD_SUB);
  parser.DefineOprt("-", subtract, mu::prADD_SUB);
  parser.DefineOprt("*", multiply, mu::prMUL_DIV);
  parser.DefineOprt("/", divide, mu::prMUL_DIV);
  parser.DefineOprt("^", power, mu::prPOW, mu::oaRIGHT);
  parser.DefineInfixOprt("-", negated);
  parser.DefineInfixOprt("+", unchanged);
  parser.DefinePostfixOprt("%", percent);
  parser.DefineFun("min", smallest);
  parser.DefineFun("max", largest);
  parser.DefineFun("abs", absolute);
  parser.DefineFun("round", roundTo);
  return parser;
}

// A comma parts the arguments of a function and nothing else: elsewhere the parser would take the
// last part for the whole. Brackets stand in pairs.
void checkBrackets(const std::string& text) {
  struct Open {
    std::size_t at;
    bool ofFunction;
  };
  std::vector<Open> open;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int column = static_cast<int>(i) + 1;
    if (text[i] == '(') {
      const auto before = i > 0 ? text.find_last_not_of(' ', i - 1) : std::string::npos;
      const bool letter = before != std::string::npos &&
                          std::isalpha(static_cast<unsigned char>(text[before])) != 0;
      open.push_back({i, letter});
    } else if (text[i] == ')') {
      if (open.empty()) {
        throw ExpressionError(place(column) + "的括号多余，请删去或补上左括号。", column);
      }
      open.pop_back();
    } else if (text[i] == ',' && (open.empty() || !open.back().ofFunction)) {
      throw ExpressionError(place(column) + "的逗号多余：数字中请不要输入千分位逗号。", column);
    }
  }
  if (open.empty()) return;
  const int column = static_cast<int>(open.back().at) + 1;
  throw ExpressionError(place(column) + "的括号没有配对，请补上右括号。", column);
}

}  // namespace

Decimal evaluate(std::string_view text) {
  return evaluate(text, {});
}

Decimal evaluate(std::string_view text, const Variables& variables) {
  // One sign a character, so that the parser's positions are the user's.
  std::string plain;
  const std::vector<std::string_view> characters = charactersOf(text);
  for (std::size_t at = 0; at < characters.size(); ++at) {
    const std::string_view character = characters[at];
    const std::string_view rest =
        text.substr(static_cast<std::size_t>(character.data() - text.data()));
    const auto named =
        std::find_if(variables.begin(), variables.end(),
                     [rest](const std::pair<std::string, Decimal>& variable) {
                       return rest.substr(0, variable.first.size()) == variable.first;
                     });
    if (named != variables.end()) {
      // Blanks behind it keep the places of what follows.
      const std::size_t length = charactersOf(named->first).size();
      std::string name = standIn(static_cast<std::size_t>(named - variables.begin()));
      name.resize(std::max(name.size(), length), ' ');
      plain += name;
      at += length - 1;
      continue;
    }
    const char sign = plainSign(character);
    if (sign == '\0') {
      const int column = static_cast<int>(plain.size()) + 1;
      throw ExpressionError(place(column) + "“" + std::string(character) +
                                "”不能识别，请只输入数字、+ - * / ^ %、括号和函数。",
                            column);
    }
    plain += sign;
  }
  const auto last = plain.find_last_not_of(' ');
  if (last == std::string::npos) throw ExpressionError("计算式是空的，请输入计算式。", 0);
  plain.resize(last + 1);
  checkBrackets(plain);

  std::vector<double> values;  // the parser refers to them
  values.reserve(variables.size());
  try {
    mu::Parser parser = makeParser();
    for (std::size_t i = 0; i < variables.size(); ++i) {
      values.push_back(variables[i].second.toDouble());
      parser.DefineVar(standIn(i), &values.back());
    }
    parser.SetExpr(plain);
    const double value = finite(parser.Eval());
    const std::optional<Decimal> result = Decimal::fromDouble(value);
    if (!result) throw NoResult{"计算结果超出可计算的范围，请检查数字是否过大。"};
    return *result;
  } catch (const NoResult& none) {
    throw ExpressionError(none.why, 0);
  } catch (const mu::Parser::exception_type& error) {
    const int size = static_cast<int>(plain.size());
    const int column = std::min(std::max(error.GetPos() + 1, 1), size);
    throw ExpressionError(complaint(error, column, error.GetPos() >= size, variables), column);
  }
}

}  // namespace costing
