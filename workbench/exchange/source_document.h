#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/costing/decimal.h"

/// Source files: what a cost project is made from. docs/source-files.md describes the file format;
/// these are the values that it carries. All texts are UTF-8, all figures exact decimals.
namespace exchange {

/// The six kinds of source file, one an extension.
enum class SourceKind {
  Tender,        ///< ZBQD 招标文件: quantities, reference prices of resources, no bill prices
  Bid,           ///< TBQD 投标文件: everything
  ControlPrice,  ///< ZGXJQD 控制价文件: everything
  ElectronicTender,  ///< CZB: carries what a tender carries
  ElectronicBid,     ///< CTB: carries what a bid carries
  Standard,          ///< GCLQD 标准文件: quantities and contents, no money at all
};

enum class TaxMethod { General, Simplified };  // 一般计税, 简易计税

/// 人工, 材料, 机械, 主材, 设备.
enum class ResourceCategory { Labour, Material, Machinery, MainMaterial, Equipment };

/// Facts about the whole project. Texts other than id and name may be empty.
struct ProjectFacts {
  std::string id;
  std::string name;
  std::string code;
  std::string builder;   ///< 建设单位
  std::string tenderer;  ///< 投标人; never empty in the two bid kinds
  std::string region;
  std::string date;          ///< "2026-03-15", or empty
  std::string pricingBasis;  ///< 计价依据
  std::string structure;     ///< 结构类型
  TaxMethod taxMethod = TaxMethod::General;
  costing::Decimal taxRate;       ///< per cent, of the whole project
  costing::Decimal buildingArea;  ///< m²; 0 when not given
};

/// 成本科目, a tree.
struct CostAccount {
  std::string id;
  std::string code;
  std::string name;
  /// The account takes the resource items of this category that name no account themselves; at
  /// most one account in a file names a given category.
  std::optional<ResourceCategory> defaultFor;
  std::vector<CostAccount> children;
};

/// A budget resource item (人材机) of one bill.
struct Resource {
  std::string id;
  std::string code;
  std::string name;
  std::string spec;
  std::string unit;
  std::string accountId;  ///< a CostAccount's id, or empty
  ResourceCategory category = ResourceCategory::Material;
  bool ownerSupplied = false;    ///< 甲供
  bool provisional = false;      ///< 暂估
  bool priceAdjustable = false;  ///< 可调价
  costing::Decimal content;      ///< per unit of the bill, up to 6 places
  costing::Decimal price;        ///< excluding tax, up to 4 places; 0 in a standard file
  costing::Decimal taxRate;      ///< per cent
};

/// A bill (清单).
struct Bill {
  std::string id;
  std::string code;  ///< 12 digits
  std::string name;
  std::string features;  ///< 项目特征, lines separated by '\n'
  std::string unit;
  std::string accountId;      ///< a CostAccount's id, or empty
  costing::Decimal quantity;  ///< up to 4 places
  /// Both are there in the kinds that price bills, both are absent in the others.
  std::optional<costing::Decimal> unitPrice;       ///< 2 places
  std::optional<costing::Decimal> declaredAmount;  ///< 2 places
  std::vector<Resource> resources;
};

/// 分部. Holds either sub-sections or bills, never both.
struct Section {
  std::string id;
  std::string code;
  std::string name;
  std::vector<Section> sections;
  std::vector<Bill> bills;
};

/// Money that the file declares, in yuan with 2 places. Empty where the kind declares none.
struct DeclaredTotals {
  std::optional<costing::Decimal> bills;
  std::optional<costing::Decimal> resources;
  std::optional<costing::Decimal> fees;
};

/// 单位工程.
struct UnitWork {
  std::string id;
  std::string code;
  std::string name;
  std::string specialty;  ///< 专业, for example 建筑工程
  std::vector<Section> sections;
  DeclaredTotals declared;
};

/// 单项工程.
struct SingleProject {
  std::string id;
  std::string code;
  std::string name;
  std::vector<UnitWork> unitWorks;
};

/// 间接费. With a base and a rate the amount follows from them, otherwise it stands for itself.
struct IndirectFeeItem {
  std::string id;
  std::string code;
  std::string name;
  std::string basis;  ///< what the base is, for example 人工费
  std::string accountId;
  std::optional<costing::Decimal> base;  ///< yuan
  std::optional<costing::Decimal> rate;  ///< per cent; there exactly when the base is
  costing::Decimal declaredAmount;       ///< yuan, 2 places
};

/// Holds either sub-groups or items, never both.
struct IndirectFeeGroup {
  std::string id;
  std::string code;
  std::string name;
  std::string unitWorkId;  ///< top groups only: the unit work it belongs to; empty: the project
  std::vector<IndirectFeeGroup> groups;
  std::vector<IndirectFeeItem> items;
};

/// A whole source file. Ids are unique in it, across all kinds of element.
struct SourceDocument {
  SourceKind kind = SourceKind::Tender;
  ProjectFacts facts;
  std::vector<CostAccount> accounts;
  std::vector<SingleProject> projects;
  std::vector<IndirectFeeGroup> feeGroups;
  DeclaredTotals declared;  ///< of the whole project
};

/// Which money a kind carries; what it does not carry is refused in a file of that kind.
struct KindRules {
  bool billPrices;      ///< unit price and amount of each bill, and the total of bills
  bool resourcePrices;  ///< price of each resource item, and the total of resources
  bool fees;            ///< indirect fees and their total
  bool needsTenderer;
};
KindRules rulesOf(SourceKind kind);

/// "ZBQD" and so on; also the value of the root element's `kind`.
std::string extensionOf(SourceKind kind);
/// "招标文件" and so on.
std::string nameOf(SourceKind kind);
/// Any case; without the dot. Empty for any other extension.
std::optional<SourceKind> kindOfExtension(std::string_view extension);

/// "人工" and so on.
std::string nameOf(ResourceCategory category);
std::optional<ResourceCategory> categoryOfName(std::string_view name);
/// "一般计税" and "简易计税".
std::string nameOf(TaxMethod method);
std::optional<TaxMethod> taxMethodOfName(std::string_view name);

/// quantity × unit price, rounded half up to 2 places.
costing::Decimal billAmount(const costing::Decimal& quantity, const costing::Decimal& unitPrice);
/// bill quantity × content × price, rounded half up to 2 places.
costing::Decimal resourceAmount(const costing::Decimal& billQuantity,
                                const costing::Decimal& content, const costing::Decimal& price);
/// base × rate ÷ 100, rounded half up to 2 places.
costing::Decimal feeAmount(const costing::Decimal& base, const costing::Decimal& ratePercent);

/// The money of a bill, a section, a unit work, a fee group or a document as its inputs give it,
/// each line rounded before it is added.
struct Money {
  costing::Decimal bills;
  costing::Decimal resources;
  costing::Decimal fees;

  Money& operator+=(const Money& other);
};
Money moneyOf(const Bill& bill);
Money moneyOf(const UnitWork& work);  ///< without fees
Money moneyOf(const IndirectFeeGroup& group);
Money moneyOf(const SourceDocument& document);

/// How many bills and resource items a document holds.
struct Counts {
  std::size_t bills = 0;
  std::size_t resources = 0;
};
Counts countsOf(const SourceDocument& document);

}  // namespace exchange
