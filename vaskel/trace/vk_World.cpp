#include "vaskel/trace/vk_World.h"

#include <embree3/rtcore.h>
#include <tbb/task_arena.h>

#include <cstddef>
#include <limits>

namespace
{
void aim(RTCRay &ray, const vk_Vec &origin, const vk_Vec &direction, float distance)
{
    ray.org_x = origin.x;
    ray.org_y = origin.y;
    ray.org_z = origin.z;
    ray.dir_x = direction.x;
    ray.dir_y = direction.y;
    ray.dir_z = direction.z;
    // No margin: vk_Hit::start() has moved the origin off its surface.
    ray.tnear = 0;
    ray.tfar = distance;
    ray.time = 0;
    ray.mask = ~0u;
    ray.id = 0;
    ray.flags = 0;
}
} // namespace

struct vk_World::Shape {
    vk_Mesh mesh;
    vk_Transform toShape;
    const vk_SurfaceShader *surface;

    // How a triangle's place depends on u and v; 0 where they do not change on it.
    void slopes(unsigned triangle, vk_Vec &dPdu, vk_Vec &dPdv) const
    {
        const auto corners = mesh.corners(triangle);
        const vk_Vertex &a = mesh.vertices[corners[0]];
        const vk_Vertex &b = mesh.vertices[corners[1]];
        const vk_Vertex &c = mesh.vertices[corners[2]];
        const vk_Vec ab = b.position - a.position, ac = c.position - a.position;
        const float u1 = b.u - a.u, v1 = b.v - a.v, u2 = c.u - a.u, v2 = c.v - a.v;
        // Solves ab = u1 dPdu + v1 dPdv, and ac alike, by Cramer's rule.
        const float area = u1 * v2 - u2 * v1;
        const float inverse = area != 0 ? 1 / area : 0;
        dPdu = (ab * v2 - ac * v1) * inverse;
        dPdv = (ac * u1 - ab * u2) * inverse;
    }
};

struct vk_World::Embree {
    RTCDevice device = nullptr;
    RTCScene scene = nullptr;
    bool failed = false;

    Embree() = default;
    Embree(const Embree &) = delete;
    Embree &operator=(const Embree &) = delete;
    ~Embree()
    {
        // After it ran out of memory, Embree may wait for ever for what it was building.
        if (failed)
            return;
        if (scene != nullptr)
            rtcReleaseScene(scene);
        if (device != nullptr)
            rtcReleaseDevice(device);
    }
    // Once, after all is built: Embree keeps its first error until it is asked.
    void check() { failed = device == nullptr || rtcGetDeviceError(device) != RTC_ERROR_NONE; }
    // A good tree, not the best: that one takes longer than the rays of a small picture
    // repay.
    void makeScene()
    {
        scene = rtcNewScene(device);
        rtcSetSceneBuildQuality(scene, RTC_BUILD_QUALITY_MEDIUM);
    }
    void attach(const vk_Mesh &mesh);
    void build() const;
};

// One thread builds: the tree, and with it the last bit of a hit, must not
// depend on how many threads there are. (Telling the device to use one thread
// would leave one to everybody in the process.)
void vk_World::Embree::build() const
{
    tbb::task_arena alone(1);
    alone.execute([&] { rtcJoinCommitScene(scene); });
}

// The mesh stays ours, and must not move or go before the tree does. Embree reads 16 bytes for the
// 12 of a position; behind the last one there is the rest of its vertex.
void vk_World::Embree::attach(const vk_Mesh &mesh)
{
    const RTCGeometry geometry = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_QUAD);
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3,
                               mesh.vertices.data(), offsetof(vk_Vertex, position),
                               sizeof(vk_Vertex), mesh.vertices.size());
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT4,
                               mesh.quads.data(), 0, sizeof mesh.quads[0], mesh.quads.size());
    rtcSetGeometryBuildQuality(geometry, RTC_BUILD_QUALITY_MEDIUM);
    rtcCommitGeometry(geometry);
    rtcAttachGeometry(scene, geometry);
    // The scene holds on to it.
    rtcReleaseGeometry(geometry);
}

vk_World::vk_World(const vk_Scene &scene)
    : myScene(scene), myEmbree(std::make_unique<Embree>()),
      myPixel(2 * std::tan(scene.camera.fov * VK_PI / 360) /
              static_cast<float>(std::min(scene.width, scene.height)))
{
    myHasGlass = scene.floor != nullptr && scene.floor->mayBeClear();
    // A floor may be all there is, and it needs no Embree.
    if (scene.shapes.empty())
        return;
    myEmbree->device = rtcNewDevice(nullptr);
    if (myEmbree->device != nullptr)
        myEmbree->makeScene();
    for (const vk_ShapeEntry &entry : scene.shapes) {
        if (myEmbree->scene == nullptr)
            break;
        vk_MeshBuilder builder(entry.transform, entry.displace.get());
        entry.shape->build(builder);
        myShapes.push_back(std::make_unique<Shape>(
            Shape{builder.take(), entry.transform.inverse(), entry.surface.get()}));
        myEmbree->attach(myShapes.back()->mesh);
    }
    for (const auto &shape : myShapes)
        myHasGlass = myHasGlass || shape->surface->mayBeClear();
    if (myEmbree->scene != nullptr)
        myEmbree->build();
    encloseShapes();
    myEmbree->check();
    if (myEmbree->failed)
        myError = "cannot set up ray tracing (out of memory?)";
}

vk_World::~vk_World() = default;

void vk_World::encloseShapes()
{
    constexpr float FAR = std::numeric_limits<float>::max();
    constexpr float MARGIN = 1e-6f; // for rounding

    vk_Vec low = {FAR, FAR, FAR}, high = -low;
    for (const auto &shape : myShapes)
        for (const vk_Vertex &vertex : shape->mesh.vertices) {
            const vk_Vec &p = vertex.position;
            low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
        }
    // The box tells the centre only: half of its diagonal is sqrt(3) times the radius of a sphere.
    myBall.centre = (low + high) * .5f;
    float radius2 = 0;
    for (const auto &shape : myShapes)
        for (const vk_Vertex &vertex : shape->mesh.vertices) {
            const vk_Vec off = vertex.position - myBall.centre;
            radius2 = std::max(radius2, vk_dot(off, off));
        }
    myBall.radius = std::sqrt(radius2 * (1 + MARGIN));
}

std::size_t vk_World::corners() const
{
    std::size_t sum = 0;
    for (const auto &shape : myShapes)
        sum += shape->mesh.vertices.size();
    return sum;
}

// A tree is one step deeper for twice the corners, and less of it stays in the cache.
float vk_World::rayCost() const
{
    // bench/costs.py fits it again.
    constexpr float FEW = 16384, STEP = .1f;

    return 1 + STEP * std::log2(std::max(static_cast<float>(corners()) / FEW, 1.0f));
}

// A shape that stands on the floor touches it: rays that leave its bottom begin a little
// below the floor, and meet it there.
bool vk_World::meetFloor(const vk_Vec &origin, const vk_Vec &direction, float &distance) const
{
    constexpr float FOREVER = std::numeric_limits<float>::infinity();

    distance = FOREVER;
    if (myScene.floor == nullptr || direction.y == 0 || (direction.y > 0 && origin.y >= 0))
        return false;
    const float size = std::max(std::abs(origin.x), std::abs(origin.z));
    const bool touches =
        direction.y < 0 && origin.y <= 0 && origin.y > -vk_Hit::TOUCHING * (1 + size);
    const float to = touches ? 0 : -origin.y / direction.y;
    // For a ray that is all but level the quotient may overflow.
    if (!touches && !(to > 0 && to < FOREVER))
        return false;
    distance = to;
    return true;
}

// Embree counts u and v from a quad's first corner; on its second triangle we count
// them from the second.
void vk_World::describeShape(unsigned geometry, unsigned quad, float u, float v, vk_Hit &hit) const
{
    const Shape &shape = *myShapes[geometry];
    // The first triangle lacks the third corner, where u and v are 1, the second one the first.
    const bool isSecond = u + v > 1;
    const unsigned triangle = 2 * quad + (isSecond ? 1 : 0);
    if (isSecond) {
        const float toThird = u + v - 1;
        v = 1 - u;
        u = toThird;
    }
    const auto corners = shape.mesh.corners(triangle);
    const vk_Vertex &a = shape.mesh.vertices[corners[0]];
    const vk_Vertex &b = shape.mesh.vertices[corners[1]];
    const vk_Vertex &c = shape.mesh.vertices[corners[2]];
    const float w = 1 - u - v;
    // More exact than along the ray, whose rounding grows with the distance.
    hit.position = a.position * w + b.position * u + c.position * v;
    hit.normal = vk_normalize(a.normal * w + b.normal * u + c.normal * v);
    // Patterns stay with the shape, wherever its transforms take it.
    hit.point = {shape.toShape.point(hit.position), a.u * w + b.u * u + c.u * v,
                 a.v * w + b.v * u + c.v * v};
    hit.surface = shape.surface;
    hit.shape = geometry;
    hit.triangle = triangle;
}

vk_Vec vk_World::along(const vk_Hit &hit) const
{
    if (hit.isFloor)
        return {1, 0, 0};
    const vk_Mesh &mesh = myShapes[hit.shape]->mesh;
    const auto corners = mesh.corners(hit.triangle);
    const vk_Vertex &a = mesh.vertices[corners[0]];
    const vk_Vertex &b = mesh.vertices[corners[1]];
    const vk_Vertex &c = mesh.vertices[corners[2]];
    // dPdu as in slopes(), but for the size of its determinant: a length does not matter here.
    const float v1 = b.v - a.v, v2 = c.v - a.v;
    const float area = (b.u - a.u) * v2 - (c.u - a.u) * v1;
    return ((b.position - a.position) * v2 - (c.position - a.position) * v1) * (area < 0 ? -1 : 1);
}

bool vk_World::intersect(const vk_Vec &origin, const vk_Vec &direction, vk_Hit &hit,
                         float length) const
{
    float toFloor = 0;
    const bool onFloor = meetFloor(origin, direction, toFloor) && toFloor <= length;
    // Not set up: Embree fills in the rest where something is met, and most rays do not ask it.
    RTCRayHit query;
    query.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    if (mayMeetShapes(origin, direction)) {
        // What lies behind the floor need not be found.
        aim(query.ray, origin, direction, std::min(toFloor, length));
        RTCIntersectContext context;
        rtcInitIntersectContext(&context);
        rtcIntersect1(myEmbree->scene, &context, &query);
    }
    if (query.hit.geomID != RTC_INVALID_GEOMETRY_ID) {
        hit.distance = query.ray.tfar;
        hit.facet = vk_normalize({query.hit.Ng_x, query.hit.Ng_y, query.hit.Ng_z});
        hit.isFloor = false;
        describeShape(query.hit.geomID, query.hit.primID, query.hit.u, query.hit.v, hit);
    } else if (onFloor) {
        hit.distance = toFloor;
        hit.position = origin + direction * toFloor;
        // Exactly: patterns in space may have an edge there, which rounding would fray.
        hit.position.y = 0;
        hit.facet = hit.normal = {0, 1, 0};
        hit.point = {hit.position, hit.position.x, hit.position.z};
        hit.surface = myScene.floor.get();
        hit.isFloor = true;
    } else {
        return false;
    }
    // Smooth normals know the outside, triangles do not: a transform that mirrors turns them round.
    if (vk_dot(hit.facet, hit.normal) < 0)
        hit.facet = -hit.facet;
    // By the facet: smooth normals may turn away from the ray at a silhouette.
    hit.inside = vk_dot(hit.facet, direction) > 0;
    if (hit.inside) {
        hit.facet = -hit.facet;
        hit.normal = -hit.normal;
    }
    if (hit.surface->usesGeometry())
        describeGeometry(direction, hit);
    return true;
}

// For shaders that look at more of a point than its place.
void vk_World::describeGeometry(const vk_Vec &direction, vk_Hit &hit) const
{
    vk_SurfacePoint &point = hit.point;
    point.place = hit.position;
    point.normal = hit.normal;
    point.facet = hit.facet;
    point.incoming = direction;
    // As if seen straight from the camera, also after bounces, where no width is followed.
    point.footprint = myPixel * vk_length(hit.position - myScene.camera.from);
    point.isBack = hit.inside;
    // The floor's u and v are x and z.
    point.dPdu = {1, 0, 0};
    point.dPdv = {0, 0, 1};
    if (!hit.isFloor) {
        const Shape &shape = *myShapes[hit.shape];
        point.toShape = &shape.toShape;
        shape.slopes(hit.triangle, point.dPdu, point.dPdv);
    }
}

bool vk_World::occluded(const vk_Segment &way) const
{
    float toFloor = 0;
    // First what takes no walk through the tree.
    if (meetFloor(way.origin, way.direction, toFloor) && toFloor < way.distance)
        return true;
    if (!mayMeetShapes(way.origin, way.direction))
        return false;
    RTCRay ray;
    aim(ray, way.origin, way.direction, way.distance);
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    rtcOccluded1(myEmbree->scene, &context, &ray);
    // Embree puts it to minus infinity when it met something.
    return ray.tfar < 0;
}
