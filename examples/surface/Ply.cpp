#include "surface/Ply.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <string>

namespace surface {
namespace {

// Buffers the bytes of the file and writes them in large pieces.
class Bytes {
 public:
  explicit Bytes(std::FILE* op_stream) : mp_stream(op_stream) {}

  template <class T>
  void Add(T i_value) {
    static_assert(std::endian::native == std::endian::little, "bytes are written in the native order");
    std::size_t const place = m_bytes.size();
    m_bytes.resize(place + sizeof(T));
    std::memcpy(&m_bytes[place], &i_value, sizeof(T));
    if (m_bytes.size() >= piece) Flush();
  }
  template <class T>
  void AddVector(T const& i_vector) {
    for (double const component : i_vector) {
      auto const number = static_cast<float>(component);
      if (!std::isfinite(number))
        throw std::runtime_error("the surface is too large or too far away for PLY");
      Add(number);
    }
  }
  void Flush() {
    std::fwrite(m_bytes.data(), 1, m_bytes.size(), mp_stream);
    m_bytes.clear();
  }

 private:
  static constexpr std::size_t piece = 1 << 16;

  std::FILE* mp_stream;
  std::string m_bytes;
};

void WriteMesh(Mesh const& i_mesh, Palette const& i_palette, std::FILE* op_stream,
               Progress const& i_progress) {
  std::ostringstream header;
  header << "ply\n"
            "format binary_little_endian 1.0\n"
         << "element vertex " << i_mesh.vertices.size() << '\n'
         << "property float x\nproperty float y\nproperty float z\n"
            "property float nx\nproperty float ny\nproperty float nz\n"
            "property uchar red\nproperty uchar green\nproperty uchar blue\n"
         << "element face " << i_mesh.triangles.size() << '\n'
         << "property list uchar int vertex_indices\n"
            "end_header\n";
  std::string const text = header.str();
  std::fwrite(text.data(), 1, text.size(), op_stream);

  Bytes bytes(op_stream);
  auto const total = static_cast<double>(i_mesh.vertices.size() + i_mesh.triangles.size());
  std::size_t done = 0;
  auto const count = [&] {
    if (++done % 65536 == 0) i_progress(static_cast<double>(done) / total);
  };
  for (Mesh::Vertex const& vertex : i_mesh.vertices) {
    bytes.AddVector(vertex.position);
    bytes.AddVector(vertex.normal);
    for (std::uint8_t const channel : GetColour(i_palette, vertex.rank)) bytes.Add(channel);
    count();
  }
  for (auto const& triangle : i_mesh.triangles) {
    bytes.Add(static_cast<std::uint8_t>(triangle.size()));
    for (std::uint32_t const vertex : triangle) bytes.Add(static_cast<std::int32_t>(vertex));
    count();
  }
  bytes.Flush();
}

}  // namespace

void WritePly(Mesh const& i_mesh, Palette const& i_palette, common::OutputFile& io_file,
              Progress const& i_progress) {
  io_file.Write([&](std::FILE* op_stream) { WriteMesh(i_mesh, i_palette, op_stream, i_progress); });
}

}  // namespace surface
