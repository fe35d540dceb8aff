// Tokenizer and recursive-descent parser of the formula language.
#include "engine/EngineError.h"
#include "engine/FormulaNode.h"
#include "engine/ValueFormat.h"

#include <QDateTime>
#include <algorithm>

namespace Engine {

namespace {

using NodePtr = std::shared_ptr<Formula::Node>;

struct Token
{
    enum Type { End, Number, Text, Date, Word, Field, Parameter, Symbol };
    Type type = End;
    QString text;
    QVariant value;
    int position = 0;
};

class Parser
{
public:
    Parser(const QString &name, const QString &text) : m_name(name), m_text(text) { advance(); }

    NodePtr parseAll()
    {
        NodePtr root = parseOr();
        if (m_token.type != Token::End)
            fail(m_token.position, QStringLiteral("unexpected \"%1\"").arg(m_token.text));
        return root;
    }

private:
    [[noreturn]] void fail(int position, const QString &what) const
    {
        throw EngineError(EngineError::BadFormula,
                          QStringLiteral("Formula %1: position %2: %3").arg(m_name).arg(position).arg(what));
    }
    [[noreturn]] void tooDeep(int position) const
    {
        fail(position, QStringLiteral("nested more than %1 levels deep").arg(Formula::MaxDepth));
    }

    // One level of nesting while it is parsed: a bracket, a "not", a sign, a call or a list.
    class Nesting
    {
    public:
        Nesting(Parser &parser, int position) : m_parser(parser)
        {
            if (++m_parser.m_nesting > Formula::MaxDepth)
                m_parser.tooDeep(position);
        }
        ~Nesting() { --m_parser.m_nesting; }
        Nesting(const Nesting &) = delete;
        Nesting &operator=(const Nesting &) = delete;

    private:
        Parser &m_parser;
    };

    bool isWord(const char *word) const
    {
        return m_token.type == Token::Word &&
               m_token.text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
    }
    bool isSymbol(const char *symbol) const
    {
        return m_token.type == Token::Symbol && m_token.text == QLatin1String(symbol);
    }
    void expect(const char *symbol)
    {
        if (!isSymbol(symbol))
            fail(m_token.position, QStringLiteral("expected \"%1\"").arg(QLatin1String(symbol)));
        advance();
    }

    static NodePtr make(Formula::Node::Kind kind, int position, const QString &op = QString())
    {
        auto node = std::make_shared<Formula::Node>();
        node->kind = kind;
        node->position = position;
        node->op = op;
        return node;
    }
    // Makes `arg` the next operand of `node`. A chain of operators grows the tree without nesting in the
    // text, so the tree's depth is bounded too.
    void adopt(Formula::Node &node, NodePtr arg) const
    {
        node.height = std::max(node.height, arg->height + 1);
        if (node.height > Formula::MaxDepth)
            tooDeep(node.position);
        node.args.push_back(std::move(arg));
    }
    NodePtr binary(const Token &token, NodePtr left, NodePtr right) const
    {
        NodePtr node = make(Formula::Node::Binary, token.position, token.text.toLower());
        adopt(*node, std::move(left));
        adopt(*node, std::move(right));
        return node;
    }

    // A chain of "and" (or of "or") is one node with an operand for each term: it does not nest.
    NodePtr parseChain(const char *word, NodePtr (Parser::*parseTerm)())
    {
        NodePtr first = (this->*parseTerm)();
        if (!isWord(word))
            return first;
        NodePtr chain = make(Formula::Node::Binary, m_token.position, QString::fromLatin1(word));
        adopt(*chain, std::move(first));
        while (isWord(word)) {
            advance();
            adopt(*chain, (this->*parseTerm)());
        }
        return chain;
    }
    NodePtr parseOr() { return parseChain("or", &Parser::parseAnd); }
    NodePtr parseAnd() { return parseChain("and", &Parser::parseNot); }

    NodePtr parseNot()
    {
        if (!isWord("not"))
            return parseComparison();
        const Nesting nesting(*this, m_token.position);
        NodePtr node = make(Formula::Node::Unary, m_token.position, QStringLiteral("not"));
        advance();
        adopt(*node, parseNot());
        return node;
    }

    NodePtr parseComparison()
    {
        NodePtr left = parseAdditive();
        static const QStringList comparisons = {
            QStringLiteral("="), QStringLiteral("=="), QStringLiteral("<>"), QStringLiteral("!="),
            QStringLiteral("<"), QStringLiteral("<="), QStringLiteral(">"),  QStringLiteral(">=")};
        if (m_token.type == Token::Symbol && comparisons.contains(m_token.text)) {
            const Token op = m_token;
            advance();
            return binary(op, left, parseAdditive());
        }
        if (isWord("in")) {
            NodePtr node = make(Formula::Node::In, m_token.position);
            advance();
            adopt(*node, std::move(left));
            adopt(*node, parseInList());
            return node;
        }
        return left;
    }

    NodePtr parseInList()
    {
        if (m_token.type == Token::Parameter)
            return parsePrimary();
        const bool bracket = isSymbol("[");
        if (!bracket && !isSymbol("("))
            fail(m_token.position,
                 QStringLiteral("expected a list in [ ] or ( ) or a parameter after \"in\""));
        const Nesting nesting(*this, m_token.position);
        NodePtr list = make(Formula::Node::List, m_token.position);
        advance();
        while (!isSymbol(bracket ? "]" : ")")) {
            if (!list->args.empty())
                expect(",");
            adopt(*list, parseAdditive());
        }
        advance();
        return list;
    }

    NodePtr parseAdditive()
    {
        NodePtr left = parseMultiplicative();
        while (isSymbol("+") || isSymbol("-") || isSymbol("&")) {
            const Token op = m_token;
            advance();
            left = binary(op, left, parseMultiplicative());
        }
        return left;
    }

    NodePtr parseMultiplicative()
    {
        NodePtr left = parseUnary();
        while (isSymbol("*") || isSymbol("/")) {
            const Token op = m_token;
            advance();
            left = binary(op, left, parseUnary());
        }
        return left;
    }

    NodePtr parseUnary()
    {
        if (!isSymbol("-"))
            return parsePrimary();
        const Nesting nesting(*this, m_token.position);
        NodePtr node = make(Formula::Node::Unary, m_token.position, QStringLiteral("-"));
        advance();
        adopt(*node, parseUnary());
        return node;
    }

    NodePtr parsePrimary()
    {
        const Token token = m_token;
        switch (token.type) {
        case Token::Number:
        case Token::Text:
        case Token::Date: {
            advance();
            NodePtr node = make(Formula::Node::Literal, token.position);
            node->value = token.value;
            return node;
        }
        case Token::Field:
        case Token::Parameter: {
            advance();
            NodePtr node = make(token.type == Token::Field ? Formula::Node::Field : Formula::Node::Parameter,
                                token.position);
            node->name = token.text;
            return node;
        }
        case Token::Word: return parseWord(token);
        case Token::Symbol:
            if (token.text == QLatin1String("(")) {
                const Nesting nesting(*this, token.position);
                advance();
                NodePtr inner = parseOr();
                expect(")");
                return inner;
            }
            fail(token.position, QStringLiteral("unexpected \"%1\"").arg(token.text));
        case Token::End: break;
        }
        fail(token.position, QStringLiteral("the formula ends too early"));
    }

    NodePtr parseWord(const Token &token)
    {
        advance();
        const QString word = token.text.toLower();
        if (word == QLatin1String("true") || word == QLatin1String("false") ||
            word == QLatin1String("null")) {
            NodePtr node = make(Formula::Node::Literal, token.position);
            if (word != QLatin1String("null"))
                node->value = word == QLatin1String("true");
            return node;
        }
        static const QStringList reserved = {QStringLiteral("and"), QStringLiteral("or"),
                                             QStringLiteral("not"), QStringLiteral("in")};
        if (reserved.contains(word))
            fail(token.position, QStringLiteral("\"%1\" cannot stand here").arg(token.text));
        if (!isSymbol("(")) {
            NodePtr node = make(Formula::Node::Field, token.position);
            node->name = token.text;
            return node;
        }
        const Nesting nesting(*this, token.position);
        advance();
        NodePtr call = make(Formula::Node::Call, token.position, word);
        while (!isSymbol(")")) {
            if (!call->args.empty())
                expect(",");
            adopt(*call, parseOr());
        }
        advance();
        return call;
    }

    void advance();
    void readQuoted(Token &token, QChar quote);
    void readBraced(Token &token);
    void readDate(Token &token);

    QString m_name;
    QString m_text;
    int m_at = 0;
    int m_nesting = 0;
    Token m_token;
};

void Parser::advance()
{
    while (m_at < m_text.size() && m_text[m_at].isSpace())
        ++m_at;
    m_token = Token();
    m_token.position = m_at + 1;
    if (m_at >= m_text.size())
        return;
    const QChar c = m_text[m_at];
    if (c.isDigit() || (c == QLatin1Char('.') && m_at + 1 < m_text.size() && m_text[m_at + 1].isDigit())) {
        const int start = m_at;
        while (m_at < m_text.size() && (m_text[m_at].isDigit() || m_text[m_at] == QLatin1Char('.')))
            ++m_at;
        bool ok = false;
        m_token.type = Token::Number;
        m_token.text = m_text.mid(start, m_at - start);
        m_token.value = m_token.text.toDouble(&ok);
        if (!ok)
            fail(m_token.position, QStringLiteral("\"%1\" is not a number").arg(m_token.text));
    } else if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
        readQuoted(m_token, c);
    } else if (c == QLatin1Char('{')) {
        readBraced(m_token);
    } else if (c == QLatin1Char('#')) {
        readDate(m_token);
    } else if (c.isLetter() || c == QLatin1Char('_')) {
        const int start = m_at;
        while (m_at < m_text.size() && (m_text[m_at].isLetterOrNumber() || m_text[m_at] == QLatin1Char('_')))
            ++m_at;
        m_token.type = Token::Word;
        m_token.text = m_text.mid(start, m_at - start);
    } else {
        static const QStringList twoChar = {QStringLiteral("<="), QStringLiteral(">="), QStringLiteral("<>"),
                                            QStringLiteral("!="), QStringLiteral("==")};
        static const QString oneChar = QStringLiteral("=<>+-*/&(),[]");
        m_token.type = Token::Symbol;
        if (twoChar.contains(m_text.mid(m_at, 2)))
            m_token.text = m_text.mid(m_at, 2);
        else if (oneChar.contains(c))
            m_token.text = c;
        else
            fail(m_token.position, QStringLiteral("unexpected character \"%1\"").arg(c));
        m_at += int(m_token.text.size());
    }
}

void Parser::readQuoted(Token &token, QChar quote)
{
    QString value;
    for (++m_at; m_at < m_text.size(); ++m_at) {
        if (m_text[m_at] == quote) {
            if (m_at + 1 < m_text.size() && m_text[m_at + 1] == quote) {
                value += quote;
                ++m_at;
                continue;
            }
            ++m_at;
            token.type = Token::Text;
            token.text = value;
            token.value = value;
            return;
        }
        value += m_text[m_at];
    }
    fail(token.position, QStringLiteral("text not closed by %1").arg(quote));
}

void Parser::readBraced(Token &token)
{
    const int close = int(m_text.indexOf(QLatin1Char('}'), m_at));
    if (close < 0)
        fail(token.position, QStringLiteral("\"{\" not closed by \"}\""));
    QString inner = m_text.mid(m_at + 1, close - m_at - 1).trimmed();
    m_at = close + 1;
    token.type = inner.startsWith(QLatin1Char('?')) ? Token::Parameter : Token::Field;
    if (token.type == Token::Parameter)
        inner = inner.mid(1);
    if (inner.isEmpty())
        fail(token.position, QStringLiteral("empty name in braces"));
    token.text = inner;
}

void Parser::readDate(Token &token)
{
    const int close = int(m_text.indexOf(QLatin1Char('#'), m_at + 1));
    if (close < 0)
        fail(token.position, QStringLiteral("date not closed by \"#\""));
    const QString inner = m_text.mid(m_at + 1, close - m_at - 1).trimmed();
    m_at = close + 1;
    token.type = Token::Date;
    token.text = inner;
    const QDateTime moment = MomentOf(inner);
    if (!moment.isValid())
        fail(token.position,
             QStringLiteral("\"%1\" is not a date of the form YYYY-MM-DD [HH:MM[:SS]]").arg(inner));
    token.value = inner.size() == 10 ? QVariant(moment.date()) : QVariant(moment);
}

} // namespace

std::shared_ptr<Formula::Node> ParseFormula(const QString &name, const QString &text)
{
    return Parser(name, text).parseAll();
}

} // namespace Engine
