#pragma once

#include <cstddef>

#include "workbench/exchange/source_document.h"

/// The tables behind the samples: made up, from common practice of building work in China.
namespace exchange::sample {

/// A view of a constant table.
template <typename T>
struct Table {
  const T* first;
  std::size_t count;
  const T* begin() const { return first; }
  const T* end() const { return first + count; }
  std::size_t size() const { return count; }
  const T& operator[](std::size_t i) const { return first[i]; }
};

/// A priced resource. Prices are in yuan excluding tax, at the level of the information price.
struct CatalogueRow {
  const char* key;  ///< how recipes name it
  ResourceCategory category;
  const char* code;
  const char* name;
  const char* spec;
  const char* unit;
  const char* price;
  const char* taxRate;
  const char* account;  ///< account code, or empty for the default of the category
  const char* flags;    ///< J supplied by the owner, Z provisional, T price adjustable
};
Table<CatalogueRow> catalogue();

/// A recipe used by many bills: "key content, key content".
struct RecipeRow {
  const char* key;
  const char* recipe;
};
Table<RecipeRow> recipes();

/// A bill, or, with an empty unit, the head of a section (its code and name). A recipe is
/// "key content, @key factor, …"; @key inserts a RecipeRow with its contents times the factor.
struct BillRow {
  const char* code;  ///< 9 digits; the sequence number is added
  const char* name;
  const char* features;
  const char* unit;
  const char* quantity;
  const char* recipe;
  const char* account;
};

struct WorkRow {
  const char* code;
  const char* name;
  const char* specialty;
  const char* overheadAndProfit;  ///< per cent of the resources, in the unit price of its bills
  const char* safetyRate;         ///< per cent of its resources
  Table<BillRow> bills;
};
Table<WorkRow> works();

struct AccountRow {
  const char* code;  ///< two digits a level
  const char* name;
  const char* defaultFor;
};
Table<AccountRow> accounts();

/// An indirect fee: a rate of a base, which is `amount` or else the project's labour ("人工费") or
/// all its resources ("直接费"); without a rate, `amount` stands for itself. With neither it is a
/// group. Codes have two digits a level.
struct FeeRow {
  const char* code;
  const char* name;
  const char* basis;
  const char* rate;
  const char* amount;
  const char* account;
};
Table<FeeRow> fees();

}  // namespace exchange::sample
