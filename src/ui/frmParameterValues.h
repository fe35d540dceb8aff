#pragma once
// Asks for the parameters of a report that hold no value yet: an editor for each by its value type,
// with its prompt and its default values, one value a line for a parameter that takes several.

#include <QDialog>
#include <functional>

class QLabel;

namespace Engine {
class ParameterFieldDefinition;
class Report;
} // namespace Engine

class frmParameterValues : public QDialog
{
    Q_OBJECT
public:
    frmParameterValues(Engine::Report &report, QWidget *parent = nullptr);

    // True when every parameter holds a value already, so there is nothing to ask.
    bool IsEmpty() const { return m_fields.isEmpty(); }
    // Sets the values typed and closes; a value the parameter's type refuses is named and the dialog stays.
    void accept() override;

private:
    struct Field
    {
        Engine::ParameterFieldDefinition *parameter;
        std::function<QVariantList()> values;
    };

    void AddField(class QFormLayout *form, Engine::ParameterFieldDefinition &parameter);

    QList<Field> m_fields;
    QLabel *m_error;
};
