#include <geometry/CubeEdgeIterator.h>
#include <geometry/CubeVertexIterator.h>

#include <iostream>

int main() {
  using namespace lum::CubeElementIds;
  for (Vertex const vertex : lum::CubeVertexIterable<Face>(FaceY0)) std::cout << vertex << '\n';
  lum::CubeEdgeIterable<Cube> const along_y(lum::CubeSpaceIds::AxisY);
  std::cout << "edge " << along_y.IndexOf(Edge13) << " of " << along_y.size() << " along y\n";
}
