#include "updates/update_source.h"

#include <compare>
#include <utility>
#include <vector>

#include "base/error.h"
#include "base/text.h"
#include "updates/debian_version.h"

namespace ovrin {

namespace {

constexpr std::string_view packageName = "ovrin";

bool isNewer(std::string_view version, std::string_view than) {
    return std::is_gt(compareDebianVersions(version, than));
}

// No header of ours goes with it: the servers learn the program's name and version, and no more.
HTTPRequest request(std::string url) {
    HTTPRequest request;
    request.url = std::move(url);
    request.redirects = HTTPRedirects::anyHTTPS;
    return request;
}

Task<HTTPBytes> open(HTTPClientProtocol& http, std::string url) {
    HTTPBytes answer = co_await http.bytes(request(std::move(url)));
    const std::optional<int> status = answer.response.statusCode;
    if (!status) throw Error("更新服务器的回答不是有效的 HTTP 响应。");
    if (!answer.response.isSuccess()) throw Error("更新服务器返回了错误（HTTP " + std::to_string(*status) + "）。");
    co_return answer;
}

Task<std::string> fetchFeed(HTTPClientProtocol& http, std::string url) {
    HTTPBytes answer = co_await open(http, std::move(url));
    std::string document;
    while (document.size() <= maximumUpdateFeedSize) {
        const std::optional<std::string> chunk = co_await answer.body.next();
        if (!chunk) break;
        document += *chunk;
    }
    co_return document;
}

UpdateTarget target(const PackageSystem::Description& machine) {
    return {.distribution = machine.distribution, .release = machine.release, .architecture = machine.architecture};
}

UpdateCheck judged(const std::vector<UpdateItem>& items, PackageSystem::Description machine,
                   const std::string& running) {
    UpdateCheck result;
    const UpdateTarget wanted = target(machine);
    for (const UpdateItem& item : items) {
        if (item.target != wanted) continue;
        result.isMachineServed = true;
        const std::string newest = result.update ? result.update->packageVersion() : running;
        if (isNewer(item.packageVersion(), newest)) result.update = item;
    }
    result.machine = std::move(machine);
    return result;
}

Task<void> check(UpdateSource::Services services, UpdateConfiguration configuration,
                 StreamWriter<UpdateCheck>& writer) {
    const std::string document = co_await fetchFeed(services.http, std::string(text::trimmed(configuration.feedURL)));
    writer.push(judged(parseUpdateFeed(document), services.system.describe(), configuration.packageVersion()));
}

// A package is believed for its signature and taken for what its own control file says; what the feed says must agree,
// since the feed itself is not signed.
void verify(const UpdatePackage& package, const UpdateItem& item, const UpdateConfiguration& configuration) {
    if (!package.isSigned(item.signature, std::string(text::trimmed(configuration.publicKey)))) {
        throw Error("安装包的签名无效，可能已被篡改，已拒绝安装。");
    }
    const PackageControl control = package.control();
    if (control.package != packageName) throw Error("下载的安装包不是 Ovrin，已拒绝安装。");
    if (control.architecture != item.target.architecture) throw Error("下载的安装包不适用于此电脑的架构，已拒绝安装。");
    if (!isDebianVersion(control.version) || control.version != item.packageVersion()) {
        throw Error("下载的安装包版本与更新源所说的不符，已拒绝安装。");
    }
    if (!isNewer(control.version, configuration.packageVersion())) {
        throw Error("下载的安装包不比当前版本新，已拒绝安装。");
    }
}

Task<void> receive(HTTPClientProtocol& http, UpdateItem item, UpdatePackage& package,
                   StreamWriter<UpdateDownload>& writer) {
    HTTPBytes answer = co_await open(http, item.packageURL);
    std::uint64_t received = 0;
    std::uint64_t toldPercent = 0;
    while (true) {
        const std::optional<std::string> chunk = co_await answer.body.next();
        if (!chunk) break;
        received += chunk->size();
        if (received > item.packageSize) throw Error("下载的安装包比更新源所说的大，已拒绝安装。");
        package.append(*chunk);
        const std::uint64_t percent = received * 100 / item.packageSize;
        if (std::exchange(toldPercent, percent) != percent) writer.push({.received = received, .package = nullptr});
    }
    if (received < item.packageSize) throw Error("安装包没有下载完整，请重试。");
}

Task<void> download(UpdateSource::Services services, UpdateConfiguration configuration, UpdateItem item,
                    StreamWriter<UpdateDownload>& writer) {
    const std::shared_ptr<UpdatePackage> package = services.packages.make();
    co_await receive(services.http, item, *package, writer);
    verify(*package, item, configuration);
    writer.push({.received = item.packageSize, .package = package});
}

}  // namespace

UpdateSource::UpdateSource(UpdateConfiguration configuration, Services services)
    : configuration_(std::move(configuration)), services_(services) {}

Task<UpdateCheck> UpdateSource::check() const {
    AsyncStream<UpdateCheck> answer =
        streamFrom<UpdateCheck>(services_.loop, [services = services_, configuration = configuration_](auto& writer) {
            return ovrin::check(services, configuration, writer);
        });
    std::optional<UpdateCheck> result = co_await answer.next();
    co_return std::move(*result);
}

AsyncStream<UpdateDownload> UpdateSource::download(UpdateItem item) const {
    return streamFrom<UpdateDownload>(
        services_.loop, [services = services_, configuration = configuration_, item = std::move(item)](auto& writer) {
            return ovrin::download(services, configuration, item, writer);
        });
}

}  // namespace ovrin
