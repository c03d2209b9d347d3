// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <vector>

#include "control/values/MValue.h"
#include "gui/controls/MControl.h"
#include "state/tree/MAttribute.h"

/// Makes trees of controls from layout documents. It knows layouts, controls and values by their names,
/// which are compared without case. Rooms that bring controls add them before the first document is read.
/// Sizes in documents are units at 100 % of the style. Thread: GUI.
class MXmlLoader
{
public:
    /// The one of the module, with all layouts, values and the plain controls.
    static MXmlLoader& Get();

    MXmlLoader();
    MXmlLoader(const MXmlLoader&) = delete;
    MXmlLoader& operator=(const MXmlLoader&) = delete;

    /// Makes what an element names inside of `parent`.
    class Creator
    {
    public:
        explicit Creator(const char* tag) : name(MString::Literal(tag)) {}
        virtual ~Creator() = default;
        /// @param addToLayout  the last layout of `parent` takes it
        virtual void Create(MXmlLoader& loader, MControl& parent, const MAttribute& node,
                            bool addToLayout) const = 0;

        const MString name;
    };
    class ValueCreator
    {
    public:
        explicit ValueCreator(const char* type) : name(MString::Literal(type)) {}
        virtual ~ValueCreator() = default;
        virtual std::unique_ptr<MValue> Create() const = 0;

        const MString name;
    };

    /// A name that is there already becomes the new one's.
    template <typename T>
    void AddLayout(const char* tag)
    {
        Insert(std::unique_ptr<Creator>(std::make_unique<Layout<T>>(tag)));
    }
    template <typename T>
    void AddControl(const char* tag)
    {
        Insert(std::unique_ptr<Creator>(std::make_unique<Control<T>>(tag)));
    }
    /// The value is made with the arguments.
    template <typename Make>
    void AddValue(const char* type, Make make)
    {
        Insert(std::unique_ptr<ValueCreator>(std::make_unique<Value<Make>>(type, make)));
    }

    /// Lets `control` take what its element says, and makes all that lies inside. Elements that nobody knows
    /// are passed over. Throws what the controls throw, "Invalid MAlignment identifier to parse ({0})." for
    /// one; `control` is to be thrown away then.
    void Load(MControl& control, const MAttribute& node);
    /// The value of an element's "type", as the element defines it; null where it has none, or an unknown
    /// one.
    std::unique_ptr<MValue> CreateValue(const MAttribute& node) const;

private:
    template <typename Kind>
    using Table = std::vector<std::unique_ptr<Kind>>;   // by name

    template <typename T>
    struct Layout : Creator
    {
        using Creator::Creator;
        void Create(MXmlLoader& loader, MControl& parent, const MAttribute& node, bool) const override
        {
            loader.Fill(parent, parent.MakeLayout<T>(), node);
        }
    };
    template <typename T>
    struct Control : Creator
    {
        using Creator::Creator;
        void Create(MXmlLoader& loader, MControl& parent, const MAttribute& node,
                    bool addToLayout) const override
        {
            loader.Place(parent, parent.Make<T>(), node, addToLayout);
        }
    };
    template <typename Make>
    struct Value : ValueCreator
    {
        Value(const char* type, Make maker) : ValueCreator(type), make(maker) {}
        std::unique_ptr<MValue> Create() const override { return make(); }
        Make make;
    };

    void Insert(std::unique_ptr<Creator> creator);
    void Insert(std::unique_ptr<ValueCreator> creator);
    void Fill(MControl& parent, MLayout& layout, const MAttribute& node);
    void Place(MControl& parent, MControl& control, const MAttribute& node, bool addToLayout);
    void CreateChildren(MControl& parent, const MAttribute& node, bool addToLayout);
    void AddValues();

    Table<Creator> creators;
    Table<ValueCreator> valueCreators;
    std::int32_t depth = 0;
};
