#include "frmParameterValues.h"

#include "engine/Codes.h"
#include "engine/EngineError.h"
#include "engine/Report.h"

#include <QCheckBox>
#include <QDateTimeEdit>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>

namespace {

QDateTime DefaultMoment(const QVariantList &defaults)
{
    if (defaults.isEmpty())
        return QDateTime(QDate::currentDate(), QTime(0, 0));
    const QVariant &value = defaults.first();
    return value.typeId() == QMetaType::QDate ? QDateTime(value.toDate(), QTime(0, 0)) : value.toDateTime();
}

// An editor of dates, times or both, starting at the default.
QDateTimeEdit *MomentEdit(int valueType, const QVariantList &defaults, QWidget *parent)
{
    auto *edit = new QDateTimeEdit(DefaultMoment(defaults), parent);
    if (valueType == Engine::DateField)
        edit->setDisplayFormat(QStringLiteral("dd-MMM-yyyy"));
    else if (valueType == Engine::TimeField)
        edit->setDisplayFormat(QStringLiteral("HH:mm:ss"));
    else
        edit->setDisplayFormat(QStringLiteral("dd-MMM-yyyy HH:mm:ss"));
    edit->setCalendarPopup(valueType != Engine::TimeField);
    return edit;
}

QVariant MomentOf(int valueType, const QDateTime &moment)
{
    if (valueType == Engine::DateField)
        return moment.date();
    if (valueType == Engine::TimeField)
        return moment.time();
    return moment;
}

QString TextOf(const QVariant &value)
{
    if (value.typeId() == QMetaType::QDate)
        return value.toDate().toString(Qt::ISODate);
    return value.toString();
}

} // namespace

frmParameterValues::frmParameterValues(Engine::Report &report, QWidget *parent)
    : QDialog(parent), m_error(new QLabel(this))
{
    setObjectName(QStringLiteral("frmParameterValues"));
    setWindowTitle(QStringLiteral("Enter Parameter Values"));
    auto *form = new QFormLayout;
    for (Engine::ParameterFieldDefinition &parameter : report.ParameterFields()) {
        if (parameter.NumberOfCurrentValues() == 0)
            AddField(form, parameter);
    }
    m_error->setObjectName(QStringLiteral("lblError"));
    m_error->setWordWrap(true);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_error);
    layout->addWidget(buttons);
}

void frmParameterValues::AddField(QFormLayout *form, Engine::ParameterFieldDefinition &parameter)
{
    const int type = parameter.ValueType();
    const QVariantList defaults = parameter.boundValues();
    QString caption = parameter.Prompt().isEmpty() ? parameter.ParameterFieldName() : parameter.Prompt();
    QWidget *editor = nullptr;
    std::function<QVariantList()> values;
    if (parameter.EnableMultipleValues()) {
        QStringList lines;
        for (const QVariant &value : defaults)
            lines.append(TextOf(value));
        auto *edit = new QPlainTextEdit(lines.join(QLatin1Char('\n')), this);
        edit->setTabChangesFocus(true);
        edit->setMaximumHeight(90);
        caption += QStringLiteral(" (one a line)");
        values = [edit] {
            QVariantList list;
            for (const QString &line : edit->toPlainText().split(QLatin1Char('\n'), Qt::SkipEmptyParts))
                list.append(line.trimmed());
            return list;
        };
        editor = edit;
    } else if (type == Engine::BooleanField) {
        auto *box = new QCheckBox(this);
        box->setChecked(!defaults.isEmpty() && defaults.first().toBool());
        values = [box] { return QVariantList{box->isChecked()}; };
        editor = box;
    } else if (type == Engine::DateField || type == Engine::TimeField || type == Engine::DateTimeField) {
        QDateTimeEdit *edit = MomentEdit(type, defaults, this);
        values = [edit, type] { return QVariantList{MomentOf(type, edit->dateTime())}; };
        editor = edit;
    } else {
        auto *edit = new QLineEdit(defaults.isEmpty() ? QString() : TextOf(defaults.first()), this);
        values = [edit] { return QVariantList{edit->text()}; };
        editor = edit;
    }
    editor->setObjectName(QStringLiteral("txt") + parameter.ParameterFieldName());
    auto *label = new QLabel(caption + QLatin1Char(':'), this);
    label->setBuddy(editor);
    form->addRow(label, editor);
    m_fields.append(Field{&parameter, std::move(values)});
}

void frmParameterValues::accept()
{
    for (const Field &field : std::as_const(m_fields)) {
        const QVariantList values = field.values();
        if (values.isEmpty()) {
            m_error->setText(QStringLiteral("%1 needs a value").arg(field.parameter->Name()));
            return;
        }
        field.parameter->ClearCurrentValueAndRange();
        try {
            for (const QVariant &value : values)
                field.parameter->AddCurrentValue(value);
        } catch (const Engine::EngineError &error) {
            field.parameter->ClearCurrentValueAndRange();
            m_error->setText(QStringLiteral("%1: %2").arg(field.parameter->Name(), error.description()));
            return;
        }
    }
    QDialog::accept();
}
