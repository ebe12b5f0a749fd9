#include "benchmarks/ours.h"
#include <chrono>
#include <algorithm>
#include <QCoreApplication>
#include "framework/filter_view_model.h"
#include "framework/view_model.h"
namespace bench {
namespace {
using Source = gui::TViewModel<abst::BaseModel>;
class AnyFilter : public abst::BaseModel { public: using SourceModel = abst::BaseModel; };
struct El : proxy::Element {
  int r=0; std::string t[5]; double n[5]; El* p=nullptr; std::vector<scoped_refptr<El>> kids;
  proxy::Element* parent() const override { return p; }
  int row() const override { return r; }
  int childCount() const override { return (int)kids.size(); }
  proxy::Element* child(int i) const override { return i>=0&&i<(int)kids.size()?kids[i].get():nullptr; }
  std::int64_t id() const override { return r; }
};
struct Grp : proxy::ElementGroup {
  std::vector<scoped_refptr<El>> m;
  int size() const override { return (int)m.size(); }
  proxy::Element* member(int i) const override { return i>=0&&i<(int)m.size()?m[i].get():nullptr; }
  static void ro(std::vector<scoped_refptr<El>>& m,const Less& l){
    std::stable_sort(m.begin(), m.end(), [&](auto&a,auto&b){return l(a.get(),b.get());}); int i=0; for(auto&e:m) e->r=i++; for(auto&e:m) if(!e->kids.empty()) ro(e->kids,l); }
  void reorder(const Less& l) override { ro(m,l); }
};
struct Op : domain::Operator {
  Grp g; std::unordered_map<std::string,int> k;
  proxy::ElementGroup* getRoot() override { return &g; }
  bool getValue(const proxy::Element* e, const std::string& key, int role, domain::Value& out) const override {
    if (role!=0&&role!=2) return false;
    int i = k.find(key)->second; auto* el=static_cast<const El*>(e);
    if (i<5) domain::AssignText(out, el->t[i]); else out = el->n[i-5];
    return true;
  }
  bool setValue(proxy::Element*, const std::string&, const domain::Value&, int) override { return false; }
  bool isEnabled(const proxy::Element*, const std::string&) const override {return true;}
  bool isEditable(const proxy::Element*, const std::string&) const override {return true;}
  bool isCheckable(const proxy::Element*, const std::string&) const override {return false;}
};
struct Filter : gui::TFilterViewModel<AnyFilter> {
  using TFilterViewModel::TFilterViewModel; std::string a,b;
  using TFilterViewModel::filterAcceptsRow;
  bool filterAcceptsRow(proxy::Element* e) const override { auto* x=static_cast<El*>(e); if(a.empty()) return true; if (!x->kids.empty()) return false; return x->t[2].find(a)!=std::string::npos && x->t[3].find(b)!=std::string::npos; }
};
}
struct Ours::Parts { bool connected=false; domain::DisplayTable t; Op op; Source src; std::unique_ptr<Filter> f; };
Ours::Ours(const Rows& rows) : parts_(new Parts) {
  const char* keys[]={"QCE_CostAccount","QCE_BRICode","QCE_BRIName","QCE_BRISpec","QCE_BRIUnit","QCE_BRIAmount","b","c","d","e"};
  for (int i=0;i<10;++i){ domain::DataField f; f.type=i<5?0:3; if(i>=5){f.precision=2; f.thousandsSeparators=true;} parts_->t.getHeader()->addColumn(keys[i],f); parts_->op.k[keys[i]]=i; }
  scoped_refptr<El> top(new El); parts_->op.g.m.push_back(top);
  for (size_t i=0;i<rows.size();++i){ scoped_refptr<El> e(new El); for(int c=0;c<5;++c){e->t[c]=rows.text(i,c); e->n[c]=rows.number(i,c);} e->r=(int)i; e->p=top.get(); top->kids.push_back(e);}
  parts_->src.setDisplayTable(&parts_->t); parts_->src.setOperator(&parts_->op);
  parts_->f.reset(new Filter(&parts_->src));
}
Ours::~Ours()=default;
QAbstractItemModel& Ours::filter(){return *parts_->f;}
void Ours::filterByCondition(const std::string& a,const std::string& b){parts_->f->a=a;parts_->f->b=b;parts_->f->invalidate(); parts_->f->rowCount(parts_->f->index(0,0));}
void Ours::cancelCondition(){parts_->f->a.clear();parts_->f->invalidate();parts_->f->rowCount(parts_->f->index(0,0));}
double Ours::sort(int column, Qt::SortOrder order){
  using C=std::chrono::steady_clock; static C::time_point s; static double took; static bool done; done=false;
  if(!parts_->connected){parts_->connected=true; parts_->f->connectLayoutAboutToBeChanged([]{s=C::now();}); parts_->f->connectLayoutChanged([]{took=std::chrono::duration<double>(C::now()-s).count();done=true;});}
  parts_->f->sort(column,order); while(!done) QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents); parts_->f->rowCount(parts_->f->index(0,0)); return took; }
}
