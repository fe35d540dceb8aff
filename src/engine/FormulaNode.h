#pragma once
// The syntax tree of a formula, shared by its parser and its evaluator.

#include "engine/Formula.h"

#include <vector>

namespace Engine {

struct Formula::Node
{
    enum Kind { Literal, Field, Parameter, Unary, Binary, In, Call, List };

    Kind kind = Literal;
    QString op;         // operator, or function name in small letters
    QString name;       // field or parameter name
    QVariant value;     // literal value, or the bound values of a parameter
    NameRef ref;        // what a field name stands for, once bound
    SummaryRef summary; // what a summary function reads, once bound
    int position = 0;   // 1-based place in the formula text
    int height = 1;     // levels of the tree from here down
    std::vector<std::shared_ptr<Node>> args;
};

// Builds the tree; raises EngineError on a syntax fault.
std::shared_ptr<Formula::Node> ParseFormula(const QString &name, const QString &text);
// Sum, Count, DistinctCount, Average, Minimum, Maximum, PercentOfSum (by their names in small letters).
bool IsSummaryFunction(const QString &name);

} // namespace Engine
