// What an object of the gateway consists of, said once: of each field its name, the member that holds it, and the kind of its
// values. From that follow how a scenario is read, the state as JSON, the scenario's JSON Schema, the records that commands
// answer with, and the configurations that they take.
//
//     template <>
//     const Description<Lamp>& descriptionOf<Lamp>()
//     {
//         static const Description<Lamp> kLamp = Fields<Lamp>()
//                                                    .required("name", &Lamp::name, text(1, 15))
//                                                    .field("level", &Lamp::level, number(0, 10))
//                                                    .derived("isLit", &Lamp::isLit);
//         return kLamp;
//     }
#pragma once

#include "fields.h"
#include "kinds.h"

#include <type_traits>

namespace tarn::simulator
{

// --- Values in records -------------------------------------------------------------------------------------------------------

// A value of a kind that no record holds has none of these: such a field is left to the commands that know it.
void fill(Record& record, const layout::Field& field, std::uint32_t value);
void fill(Record& record, const layout::Field& field, std::uint64_t value);
void fill(Record& record, const layout::Field& field, std::int32_t value);
void fill(Record& record, const layout::Field& field, bool value);
void fill(Record& record, const layout::Field& field, const std::string& value);
void fill(Record& record, const layout::Field& field, const MacAddress& value);
void fill(Record& record, const layout::Field& field, const MobilityDomain& value);
void fill(Record& record, const layout::Field& field, const std::vector<std::uint32_t>& value);
void fill(Record& record, const layout::Field& field, const std::vector<MacAddress>& value);

void take(const Record& record, const std::string& name, std::uint32_t& value);
void take(const Record& record, const std::string& name, std::string& value);

template <typename Value, typename = void>
struct GoesIntoRecords : std::false_type
{
};

template <typename Value>
struct GoesIntoRecords<Value, std::void_t<decltype(fill(std::declval<Record&>(), std::declval<const layout::Field&>(),
                                                        std::declval<const Value&>()))>> : std::true_type
{
};

// --- Fields ------------------------------------------------------------------------------------------------------------------

template <typename Object, typename Value>
class MemberField : public ValueField<Object, Value>
{
public:
    MemberField(std::string name, Value Object::*member, KindOf<Value> kind, bool isRequired)
        : ValueField<Object, Value>(std::move(name), member), kind_(std::move(kind)), isRequired_(isRequired)
    {
    }

    void set(Object& object, Value value) const override
    {
        if (!kind_->accepts(value))
            throw Refused{ReplyStatus::kInvalidValue, refusal(value)};
        object.*this->member() = std::move(value);
    }

    void read(base::JsonObject& from, Object& to) const override
    {
        const base::JsonValue value = from[this->name()];
        if (value || isRequired_)
            kind_->read(value, to.*this->member());
    }

    void write(const Object& from, Json& to) const override
    {
        Json value = kind_->write(from.*this->member());
        if (!value.is_null())
            to[this->name()] = std::move(value);
    }

    void describe(Json& schema) const override
    {
        schema["properties"][this->name()] = kind_->schema();
        if (isRequired_)
            schema["required"].push_back(this->name());
    }

    bool accepts(const Object& object) const override
    {
        return kind_->accepts(object.*this->member());
    }

    void fill(Record& record, const layout::Field& field, const Object& from) const override
    {
        if constexpr (std::is_enum_v<Value>)
            if (field.type == layout::FieldType::kText)
                record.setText(this->name(), kind_->write(from.*this->member()).template get<std::string>());
            else
                record.setNumber(this->name(), static_cast<std::uint64_t>(from.*this->member()));
        else if constexpr (GoesIntoRecords<Value>::value)
            simulator::fill(record, field, from.*this->member());
    }

    void take(const Record& record, Object& to) const override
    {
        if constexpr (std::is_same_v<Value, std::uint32_t> || std::is_same_v<Value, std::string>)
        {
            Value value;
            simulator::take(record, this->name(), value);
            set(to, std::move(value));
        }
        else
            throw std::logic_error(this->name() + " is not taken from records");
    }

    void copy(const Object& from, Object& to) const override
    {
        if constexpr (std::is_copy_assignable_v<Value>)
            to.*this->member() = from.*this->member();
    }

private:
    // What the scenario's reader would say of it.
    std::string refusal(const Value& value) const
    {
        if constexpr (std::is_enum_v<Value>)
            return this->name() + ": " + std::to_string(static_cast<std::uint32_t>(value)) +
                   "; expected a number that has a name";
        else
            try
            {
                const base::JsonDocument written(kind_->write(value), this->name());
                Value read{};
                kind_->read(written.root(), read);
            }
            catch (const base::JsonError& error)
            {
                return error.what();
            }
        return this->name() + ": a value that it cannot have";
    }

    Value Object::*member_;
    KindOf<Value> kind_;
    bool isRequired_;
};

// What follows from the others, in records only.
template <typename Object, typename Get>
class DerivedField : public Field<Object>
{
public:
    DerivedField(std::string name, Get get) : Field<Object>(std::move(name)), get_(get)
    {
    }

    void fill(Record& record, const layout::Field& field, const Object& from) const override
    {
        if constexpr (std::is_enum_v<std::decay_t<std::invoke_result_t<Get, const Object&>>>)
            record.setNumber(this->name(), static_cast<std::uint64_t>(std::invoke(get_, from)));
        else
            simulator::fill(record, field, std::invoke(get_, from));
    }

    void read(base::JsonObject& /*from*/, Object& /*to*/) const override
    {
    }
    void write(const Object& /*from*/, Json& /*to*/) const override
    {
    }
    void describe(Json& /*schema*/) const override
    {
    }
    bool accepts(const Object& /*object*/) const override
    {
        return true;
    }
    void take(const Record& /*record*/, Object& /*to*/) const override
    {
        throw std::logic_error(this->name() + " cannot be set");
    }
    void copy(const Object& /*from*/, Object& /*to*/) const override
    {
    }

private:
    Get get_; // a member, or a function of the object
};

// A field of a member, as if it were the object's own.
template <typename Object, typename Part>
class PartField : public Field<Object>
{
public:
    PartField(Part Object::*part, std::shared_ptr<const Field<Part>> field)
        : Field<Object>(field->name()), part_(part), field_(std::move(field))
    {
    }

    void read(base::JsonObject& from, Object& to) const override
    {
        field_->read(from, to.*part_);
    }
    void write(const Object& from, Json& to) const override
    {
        field_->write(from.*part_, to);
    }
    void describe(Json& schema) const override
    {
        field_->describe(schema);
    }
    bool accepts(const Object& object) const override
    {
        return field_->accepts(object.*part_);
    }
    void fill(Record& record, const layout::Field& field, const Object& from) const override
    {
        field_->fill(record, field, from.*part_);
    }
    void take(const Record& record, Object& to) const override
    {
        field_->take(record, to.*part_);
    }
    void copy(const Object& from, Object& to) const override
    {
        field_->copy(from.*part_, to.*part_);
    }

private:
    Part Object::*part_;
    std::shared_ptr<const Field<Part>> field_;
};

// --- Descriptions ------------------------------------------------------------------------------------------------------------

// Collects the fields of a description.
template <typename Object>
class Fields
{
public:
    template <typename Value, typename Kind>
    Fields& field(const char* name, Value Object::*member, std::shared_ptr<Kind> kind)
    {
        return add(std::make_shared<MemberField<Object, Value>>(name, member, std::move(kind), false));
    }

    // One that a scenario has to have.
    template <typename Value>
    Fields& required(const char* name, Value Object::*member, KindOf<Value> kind)
    {
        return add(std::make_shared<MemberField<Object, Value>>(name, member, std::move(kind), true));
    }

    template <typename Get>
    Fields& derived(const char* name, Get get)
    {
        return add(std::make_shared<DerivedField<Object, Get>>(name, get));
    }

    // The fields of a member.
    template <typename Part>
    Fields& part(Part Object::*member)
    {
        for (const auto& field : descriptionOf<Part>().fields())
            add(std::make_shared<PartField<Object, Part>>(member, field));
        return *this;
    }

    operator Description<Object>() // NOLINT(google-explicit-constructor): it is what the chain of calls is for
    {
        return Description<Object>(std::move(fields_));
    }

private:
    Fields& add(std::shared_ptr<const Field<Object>> field)
    {
        fields_.push_back(std::move(field));
        return *this;
    }

    typename Description<Object>::Fields fields_;
};

template <typename Object>
class ObjectKind : public Kind<Object>
{
public:
    void read(const base::JsonValue& from, Object& to) const override
    {
        base::JsonObject object = from.object();
        for (const auto& field : descriptionOf<Object>().fields())
            field->read(object, to);
        object.finish();
    }

    Json write(const Object& from) const override
    {
        Json object = Json::object();
        for (const auto& field : descriptionOf<Object>().fields())
            field->write(from, object);
        return object;
    }

    Json schema() const override
    {
        Json schema = {{"type", "object"}, {"additionalProperties", false}, {"properties", Json::object()}};
        for (const auto& field : descriptionOf<Object>().fields())
            field->describe(schema);
        return schema;
    }

    bool accepts(const Object& value) const override
    {
        return descriptionOf<Object>().accepts(value);
    }
};

template <typename Object>
KindOf<Object> object()
{
    return std::make_shared<ObjectKind<Object>>();
}

template <typename Object>
class ChangesKind : public Kind<Changes<Object>>
{
public:
    void read(const base::JsonValue& from, Changes<Object>& to) const override
    {
        base::JsonObject object = from.object();
        for (const auto& field : descriptionOf<Object>().fields())
            if (object[field->name()])
            {
                field->read(object, to.values());
                to.note(*field);
            }
        object.finish();
    }

    Json write(const Changes<Object>& from) const override
    {
        Json object = Json::object();
        for (const auto& field : descriptionOf<Object>().fields())
            if (from.has(*field))
                field->write(from.values(), object);
        return object;
    }

    Json schema() const override
    {
        return ObjectKind<Object>().schema();
    }

    bool accepts(const Changes<Object>& /*value*/) const override
    {
        return true;
    }
};

template <typename Object>
KindOf<Changes<Object>> changesOf()
{
    return std::make_shared<ChangesKind<Object>>();
}

} // namespace tarn::simulator
