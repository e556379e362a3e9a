// The fields of the gateway's objects, as whoever reads and changes these sees them: by name, for records, or by member, where
// a misspelt one is a compile error. description.h says what a description is.
#pragma once

#include "base/mac_address.h"
#include "mobility_domain.h"
#include "record.h"
#include "reply_status.h"

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace tarn::base
{
class JsonObject;
}

namespace tarn::simulator
{

using Json = nlohmann::ordered_json;

// --- One field ---------------------------------------------------------------------------------------------------------------

template <typename Object>
class Field
{
public:
    explicit Field(std::string name) : name_(std::move(name))
    {
    }
    Field(const Field&) = delete;
    Field& operator=(const Field&) = delete;
    virtual ~Field() = default;

    const std::string& name() const
    {
        return name_;
    }

    virtual void read(base::JsonObject& from, Object& to) const = 0; // throws base::JsonError
    virtual void write(const Object& from, Json& to) const = 0;
    virtual void describe(Json& schema) const = 0;
    virtual bool accepts(const Object& object) const = 0;

    // A record's field of this name. `take` throws Refused for a value that is not accepted.
    virtual void fill(Record& record, const layout::Field& field, const Object& from) const = 0;
    virtual void take(const Record& record, Object& to) const = 0;

    virtual void copy(const Object& from, Object& to) const = 0;

private:
    std::string name_;
};

// One that is a member of the object.
template <typename Object, typename Value>
class ValueField : public Field<Object>
{
public:
    ValueField(std::string name, Value Object::*member) : Field<Object>(std::move(name)), member_(member)
    {
    }

    Value Object::*member() const
    {
        return member_;
    }

    // Throws Refused for a value that is not accepted.
    virtual void set(Object& object, Value value) const = 0;

private:
    Value Object::*member_;
};

// --- Objects -----------------------------------------------------------------------------------------------------------------

template <typename Object>
class Description
{
public:
    using Fields = std::vector<std::shared_ptr<const Field<Object>>>;

    explicit Description(Fields fields) : fields_(std::move(fields))
    {
        for (const auto& field : fields_)
            byName_[field->name()] = field.get(); // a derived one is what records have in place of a member of its name
    }

    const Fields& fields() const
    {
        return fields_;
    }

    // Null if there is none of that name.
    const Field<Object>* find(std::string_view name) const
    {
        const auto found = byName_.find(name);
        return found == byName_.end() ? nullptr : found->second;
    }

    template <typename Value>
    const ValueField<Object, Value>& of(Value Object::*member) const
    {
        for (const auto& field : fields_)
            if (const auto* found = dynamic_cast<const ValueField<Object, Value>*>(field.get()))
                if (found->member() == member)
                    return *found;
        throw std::logic_error("a member without a description");
    }

    bool accepts(const Object& object) const
    {
        return std::all_of(fields_.begin(), fields_.end(), [&](const auto& field) { return field->accepts(object); });
    }

    // Each of the record's fields that has the name of one of these.
    void fill(Record& record, const Object& from) const
    {
        for (const layout::Field& each : record.own().fields)
            if (const Field<Object>* const field = find(each.name))
                field->fill(record, each, from);
    }

private:
    Fields fields_;
    std::unordered_map<std::string_view, const Field<Object>*> byName_;
};

// Every kind of object has one; objects.h says which kinds there are.
template <typename Object>
const Description<Object>& descriptionOf();

template <typename Object>
void fill(Record& record, const Object& from)
{
    descriptionOf<Object>().fill(record, from);
}

// Throws Refused, and changes nothing, for a value that the member does not take.
template <typename Object, typename Value>
void assign(Object& object, Value Object::*member, Value value)
{
    descriptionOf<Object>().of(member).set(object, std::move(value));
}

// Changes of some fields of settings, which are made all at once.
template <typename Object>
class Changes
{
public:
    // Both throw Refused for a value that is not accepted.
    template <typename Value>
    Changes& set(Value Object::*member, Value value)
    {
        const auto& field = descriptionOf<Object>().of(member);
        field.set(values_, std::move(value));
        note(field);
        return *this;
    }

    // Those that the record in use lacks are left out.
    void take(const Record& record, const std::vector<std::string>& names)
    {
        for (const std::string& name : names)
        {
            const Field<Object>* const field = descriptionOf<Object>().find(name);
            if (field == nullptr)
                throw std::logic_error("no setting " + name);
            if (!record.has(name))
                continue;
            field->take(record, values_);
            note(*field);
        }
    }

    // Those of a later change take the place of earlier ones of the same fields.
    void add(const Changes& later)
    {
        later.applyTo(values_);
        for (const Field<Object>* field : later.fields_)
            note(*field);
    }

    template <typename Value>
    bool has(Value Object::*member) const
    {
        return has(descriptionOf<Object>().of(member));
    }

    void applyTo(Object& object) const
    {
        for (const Field<Object>* field : fields_)
            field->copy(values_, object);
    }

    // Whether that field is changed; notes that it is.
    bool has(const Field<Object>& field) const
    {
        return std::find(fields_.begin(), fields_.end(), &field) != fields_.end();
    }
    void note(const Field<Object>& field)
    {
        if (!has(field))
            fields_.push_back(&field);
    }

    Object& values()
    {
        return values_;
    }
    const Object& values() const
    {
        return values_;
    }

private:
    Object values_;
    std::vector<const Field<Object>*> fields_; // that are changed, each once
};

} // namespace tarn::simulator
