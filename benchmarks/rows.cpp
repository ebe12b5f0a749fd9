#include "benchmarks/rows.h"

#include <array>
#include <cmath>
#include <random>

namespace bench {
namespace {

const std::array<const char*, 12> Names = {
    "螺纹钢筋", "商品混凝土", "普通硅酸盐水泥", "中砂", "综合工日", "加气混凝土砌块",
    "铜芯电缆", "镀锌钢管",   "塔式起重机",     "模板", "防水卷材", "内墙乳胶漆"};
const std::array<const char*, 8> Units = {"t", "m3", "kg", "m2", "工日", "m", "台班", "个"};
const std::array<const char*, 6> Accounts = {"材料费/钢材", "材料费/混凝土", "人工费",
                                             "机械费",      "材料费/其他",   "专业分包"};

double cents(double value) {
  return std::round(value * 100) / 100;
}

}  // namespace

Rows::Rows(std::size_t count, std::uint32_t seed) {
  std::mt19937 random(seed);
  pick_.reserve(count);
  quantity_.reserve(count);
  price_.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    pick_.push_back(static_cast<std::uint32_t>(random()));
    quantity_.push_back(static_cast<double>(random() % 100000000) / 100);
    price_.push_back(static_cast<double>(random() % 500000) / 100);
  }
}

std::string Rows::text(std::size_t row, int column) const {
  const std::uint32_t pick = pick_[row];
  switch (column) {
    case 0:
      return Accounts[pick % Accounts.size()];
    case 1:
      return "01" + std::to_string(100000000 + pick % 900000000);
    case 2:
      return std::string(Names[(pick >> 4) % Names.size()]) + " " +
             std::to_string((pick >> 8) % 5000);
    case 3:
      return "DN" + std::to_string((pick >> 6) % 400) + "×" + std::to_string((pick >> 12) % 30);
    default:
      return Units[(pick >> 3) % Units.size()];
  }
}

double Rows::number(std::size_t row, int column) const {
  switch (column) {
    case 0:
      return quantity_[row];
    case 1:
      return price_[row];
    case 2:
      return cents(quantity_[row] * price_[row]);
    case 3:
      return cents(price_[row] * 1.13);
    default:
      return cents(quantity_[row] * price_[row] * 1.13);
  }
}

}  // namespace bench
