// The smallest MCP server that the public TypeScript SDK makes: no tool, and the low-level class. One made with
// McpServer takes as long to start.
import { Server } from "@modelcontextprotocol/sdk/server/index.js";
import { StdioServerTransport } from "@modelcontextprotocol/sdk/server/stdio.js";

await new Server({ name: "smallest", version: "1.0.0" }, { capabilities: {} }).connect(new StdioServerTransport());
