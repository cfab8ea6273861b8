// SPDX-License-Identifier: MIT
#pragma once

#include "../support/Environment.h"

#include <store/Store.h>

#include <gtest/gtest.h>

using Configurations = std::vector<std::shared_ptr<model::Configuration>>;

/// A test with a data folder of its own, which goes with it; the store's file has its default path there.
class StoreTest : public testing::Test {
protected:
    StoreTest();
    ~StoreTest() override;

    /// Puts `text` in the place of the store's file.
    void put(const std::string& text) const;
    std::string content() const;
    /// The names in the folder but those of the store's file and its former versions, sorted.
    std::vector<std::string> othersInFolder() const;

    std::filesystem::path data;
    std::filesystem::path folder;
    std::filesystem::path file;

private:
    support::Environment m_environment;
};

/// A document of version 1 with these configurations, each a JSON object.
std::string documentOf(const std::string& configurations);

std::string readAll(const std::filesystem::path& path);

std::shared_ptr<model::ImprinterModel> modelOf(const Configurations& configurations);

/// The names of the configurations, as UTF-8.
std::vector<std::string> namesOf(const Configurations& configurations);

/// What people are told, as UTF-8; empty when there is no message.
std::string sentenceOf(const store::LoadResult& result);
std::string sentenceOf(const std::optional<store::Failure>& failure);

extern const std::vector<std::string> suppliedNames;
