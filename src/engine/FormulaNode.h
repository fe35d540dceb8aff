#pragma once
// The syntax tree of a formula, shared by its parser and its evaluator.

#include "engine/Formula.h"

#include <vector>

namespace Engine {

struct Formula::Node
{
    enum Kind { Literal, Field, Parameter, Unary, Binary, In, Call, List };

    Kind kind = Literal;
    QString op;     // operator, or function name in small letters
    QString name;   // field or parameter name
    QVariant value; // literal value, or the bound values of a parameter
    int fieldIndex = -1;
    int position = 0; // 1-based place in the formula text
    std::vector<std::shared_ptr<Node>> args;
};

// Builds the tree; raises EngineError on a syntax fault.
std::shared_ptr<Formula::Node> ParseFormula(const QString &name, const QString &text);

} // namespace Engine
