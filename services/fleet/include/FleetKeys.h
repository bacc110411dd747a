#pragma once

#include <array>
#include <string_view>

/// The keys that configure the fleet service. All but the last two are read from the administrators' stores only.
namespace ZelUnified::FleetKeys {

/// The URLs of the cluster's members, separated by commas: "https://etcd1.example:2379,https://etcd2.example:2379".
inline constexpr std::wstring_view endpoints = L"FleetEndpoints";
/// The groups of this machine, separated by commas. A group wins over those listed after it.
inline constexpr std::wstring_view groups = L"FleetGroups";
/// The user's name in the cluster; without it, the name of the account that runs the client.
inline constexpr std::wstring_view user = L"FleetUser";
/// The file of the certificate authorities that the members' certificates are checked against; without it, those of the
/// system.
inline constexpr std::wstring_view authority = L"FleetCertificateAuthority";
/// The files of the client's certificate and of its private key, in PEM.
inline constexpr std::wstring_view clientCertificate = L"FleetClientCertificate";
inline constexpr std::wstring_view clientKey = L"FleetClientKey";
/// A true value allows endpoints that begin with "http://".
inline constexpr std::wstring_view plainHttpAllowed = L"FleetPlainHttpAllowed";
/// The priority of the store, a number; 45 without it.
inline constexpr std::wstring_view priority = L"FleetPriority";
/// The cluster's user and password. Sensitive, and read from every store. The name of the second contains
/// "connectionpassword", so that the policies' store does not log its value.
inline constexpr std::wstring_view username = L"FleetConnectionUsername";
inline constexpr std::wstring_view password = L"FleetConnectionPassword";

/// The keys that the service, and every host that shows values, marks as sensitive.
inline constexpr std::array sensitiveKeys{username, password};

} // namespace ZelUnified::FleetKeys
