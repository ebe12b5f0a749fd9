#include "framework/element_answers.h"

#include <QTest>
#include <map>
#include <random>

#include "tests/support/test_elements.h"

class TestElementAnswers : public QObject {
  Q_OBJECT

 private slots:
  // Elements of several sizes of block, beside each other and far apart, against a plain map.
  void answersAsAMapDoes() {
    std::mt19937 random(3);
    std::vector<scoped_refptr<tests::Node>> nodes;
    std::vector<std::unique_ptr<char[]>> between;
    for (int i = 0; i < 4000; ++i) {
      nodes.emplace_back(new tests::Node("n"));
      between.push_back(std::make_unique<char[]>(random() % 5 == 0 ? 200000 : random() % 40));
    }
    gui::ElementAnswers answers;
    std::map<const proxy::Element*, bool> plain;
    for (int step = 0; step < 30000; ++step) {
      tests::Node* node = nodes[random() % nodes.size()].get();
      const auto known = plain.find(node);
      QCOMPARE(answers.find(node),
               known != plain.end() ? std::optional<bool>(known->second) : std::nullopt);
      const bool answer = random() % 2 == 0;
      answers.insert(node, answer);
      plain[node] = answer;
      if (step == 20000) {
        answers.clear();
        plain.clear();
      }
    }
    QCOMPARE(answers.size(), plain.size());
  }

  void holdsWhatItAnswersFor() {
    gui::ElementAnswers answers;
    scoped_refptr<tests::Node> node(new tests::Node("n"));
    const proxy::Element* address = node.get();
    answers.insert(node.get(), true);
    answers.insert(node.get(), false);
    QCOMPARE(node->referenceCount(), std::size_t(2));
    node.reset();  // its address cannot be used again while the answer stands
    QCOMPARE(answers.find(address), std::optional<bool>(false));
    answers.clear();
    QCOMPARE(answers.find(address), std::optional<bool>());
  }
};

QTEST_GUILESS_MAIN(TestElementAnswers)
#include "tst_element_answers.moc"
