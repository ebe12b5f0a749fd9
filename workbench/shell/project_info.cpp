#include "workbench/shell/project_info.h"

#include <QFormLayout>
#include <QLabel>
#include <QScrollArea>
#include <QTreeView>
#include <QVBoxLayout>
#include <functional>
#include <optional>
#include <utility>

#include "engineering/navigation_view.h"
#include "framework/view_model.h"
#include "host/app/services.h"
#include "host/base/number_text.h"
#include "workbench/controllers/open_project.h"
#include "workbench/services/templates.h"
#include "workbench/shell/tax_settings.h"

namespace shell {

namespace {

struct Fact {
  QString caption;
  QString value;
  QString alarm = {};  ///< behind the value, where something is wrong with it
};
using Facts = QList<Fact>;

QString text(const std::string& utf8) {
  return QString::fromStdString(utf8);
}

QString money(const std::optional<costing::Decimal>& value) {
  if (!value) return QStringLiteral("未声明");
  return text(base::ToThousandthsString(value->toDouble(), costing::MoneyPlaces)) +
         QStringLiteral(" 元");
}

/// Names as the rows of a model.
class Names : public gui::TViewModel<abst::BaseModel> {
 public:
  explicit Names(const QStringList& names) : names_(names), root_(new records::Group) {
    for (int i = 0; i < names.size(); ++i) {
      root_->rows().append(scoped_refptr<records::Record>(new records::Record(i + 1)));
    }
    table_.getHeader()->addColumn("QCE_InfoName", domain::DataField());
    setDisplayTable(&table_);
  }

  proxy::ElementGroup* getRoot() const override { return root_.get(); }
  QVariant data(const QModelIndex& index, int role) const override {
    return role == Qt::DisplayRole || role == Qt::ToolTipRole ? QVariant(names_.value(index.row()))
                                                              : QVariant();
  }
  Qt::ItemFlags flags(const QModelIndex& index) const override {
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
  }

 private:
  QStringList names_;
  scoped_refptr<records::Group> root_;
  domain::DisplayTable table_;
};

/// Facts as captions with their texts, read anew each time that the view comes up.
class FactsView : public QScrollArea, public abst::BaseView {
 public:
  explicit FactsView(std::function<Facts()> read) : read_(std::move(read)) {
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
  }

  void setModel(abst::BaseModel* /*model*/) override {}
  void activate() override { updateView(); }
  void deactivate() override {}
  void updateView() override {
    auto* form = new QWidget;
    auto* layout = new QFormLayout(form);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setHorizontalSpacing(20);
    layout->setVerticalSpacing(12);
    for (const auto& [caption, value, alarm] : read_()) {
      auto* shown = new QLabel(value.isEmpty() ? QStringLiteral("—") : value + alarm);
      shown->setTextFormat(Qt::PlainText);
      if (!alarm.isEmpty())
        shown->setStyleSheet(QStringLiteral("color: #be1e1e; font-weight: bold"));
      shown->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
      shown->setWordWrap(true);
      layout->addRow(caption + QStringLiteral("："), shown);
    }
    setWidget(form);
  }

 private:
  std::function<Facts()> read_;
};

Facts projectFacts(const records::Facts& facts) {
  const QString area = facts.buildingArea.isZero()
                           ? QString()
                           : text(facts.buildingArea.toString()) + QStringLiteral(" m²");
  return {{QStringLiteral("工程名称"), text(facts.name)},
          {QStringLiteral("测算类型"), text(facts.costType)},
          {QStringLiteral("成本计划"), text(facts.costPlan)},
          {QStringLiteral("来源文件中的名称"), text(facts.sourceName)},
          {QStringLiteral("来源文件类型"), text(facts.sourceKind)},
          {QStringLiteral("工程编码"), text(facts.code)},
          {QStringLiteral("建设单位"), text(facts.builder)},
          {QStringLiteral("投标人"), text(facts.tenderer)},
          {QStringLiteral("地区"), text(facts.region)},
          {QStringLiteral("日期"), text(facts.date)},
          {QStringLiteral("计价依据"), text(facts.pricingBasis)},
          {QStringLiteral("结构类型"), text(facts.structure)},
          {QStringLiteral("建筑面积"), area}};
}

using Money = std::optional<costing::Decimal>;

/// What was read, and whether it is what the source declares.
Fact readMoney(const QString& caption, const Money& declared, const costing::Decimal& read) {
  Fact fact{caption, money(read)};
  if (!declared) return fact;
  if (*declared == read) {
    fact.value += QStringLiteral("　　一致");
  } else {
    fact.alarm = QStringLiteral("　　不一致，相差 %1").arg(money(read - *declared));
  }
  return fact;
}

Facts moneyFacts(const records::Facts& facts) {
  Facts shown;
  const auto add = [&shown](const QString& name, const Money& declared,
                            const costing::Decimal& read) {
    shown.append({name + QStringLiteral("（来源声明）"), money(declared)});
    shown.append(readMoney(name + QStringLiteral("（读入）"), declared, read));
  };
  add(QStringLiteral("清单合价"), facts.declaredBills, facts.readBills);
  add(QStringLiteral("人材机合价"), facts.declaredResources, facts.readResources);
  add(QStringLiteral("间接费"), facts.declaredFees, facts.readFees);
  return shown;
}

QString sourceOf(const records::FeeTemplate::Line& line) {
  using Source = records::FeeTemplate::Source;
  if (!line.source) return QStringLiteral("下级之和");
  switch (*line.source) {
    case Source::Element:
      return text(records::nameOf(line.category));
    case Source::Margin:
      return QStringLiteral("清单合价 − 人材机预算合价");
    case Source::Fees: {
      QStringList names;
      for (const std::string& name : line.feeNames) names << text(name);
      return names.isEmpty() ? QStringLiteral("间接费中未列在其他行的费用组")
                             : QStringLiteral("名称含“%1”的费用组").arg(names.join("”或“"));
    }
    case Source::Subcontracts:
      return QStringLiteral("各分包的不含税合价");
    case Source::Tax:
      return QStringLiteral("（清单合价 + 间接费）× 税率");
  }
  return {};
}

void addLines(const std::vector<records::FeeTemplate::Line>& lines, const QString& indent,
              Facts& facts) {
  for (const records::FeeTemplate::Line& line : lines) {
    facts.append({indent + text(line.name), sourceOf(line)});
    addLines(line.lines, indent + QStringLiteral("　　"), facts);
  }
}

records::FeeTemplate feeTemplate() {
  return services::loadFeeTemplate(text(app::GetPathMgr()->getTemplatePath()));
}

Facts templateFacts() {
  const QString directory = text(app::GetPathMgr()->getTemplatePath());
  const records::FeeTemplate fees = feeTemplate();
  Facts facts{{QStringLiteral("自定义费用模板"),
               directory + QStringLiteral("/费用模板/投标费用.json（没有此文件时用内置模板）")}};
  addLines(fees.lines, QStringLiteral("　"), facts);
  return facts;
}

/// How the project is taxed, and below it how it is summed up.
class TaxView : public QWidget, public abst::BaseView {
 public:
  explicit TaxView(Session& session)
      : settings_(new TaxSettings(session, feeTemplate())), facts_(new FactsView(templateFacts)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(settings_);
    layout->addWidget(facts_, 1);
    connect(&session, &Session::changed, settings_, &TaxSettings::refresh);
  }

  void setModel(abst::BaseModel* /*model*/) override {}
  void activate() override { updateView(); }
  void deactivate() override {}
  void updateView() override {
    settings_->refresh();
    facts_->updateView();
  }

 private:
  TaxSettings* settings_;
  FactsView* facts_;
};

}  // namespace

Page makeProjectInfoPage(Session& session) {
  const auto names = std::make_shared<Names>(QStringList{
      QStringLiteral("基本信息"), QStringLiteral("金额核对"), QStringLiteral("计税与费用模板")});
  const records::Facts& facts = session.project().facts();
  auto* view = new gui::qce::QCENavigationViewImpl;
  view->setModel(names.get());
  view->tree()->setRootIsDecorated(false);
  view->addSubView(std::string("基本信息"),
                   new FactsView([&facts] { return projectFacts(facts); }));
  view->addSubView(std::string("金额核对"), new FactsView([&facts] { return moneyFacts(facts); }));
  view->addSubView(std::string("计税与费用模板"), new TaxView(session));

  Page page;
  page.key = QStringLiteral("info");
  page.title = QStringLiteral("工程信息");
  page.icon = QIcon(QStringLiteral(":/qce/icons/info.svg"));
  page.widget = view;
  page.view = view;
  page.find = [] {};
  page.setZoom = [](int) {};
  page.behind = names;
  return page;
}

}  // namespace shell
